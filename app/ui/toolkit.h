// SPDX-License-Identifier: MIT
#pragma once

#include <QApplication>

#include <memory>

namespace kelvora {

/// The toolkit for a program that mostly just waits: on the X server, whatever else the session
/// offers, and without what only editors of text need. To be called before any thread is started;
/// the environment, which other programs inherit, is afterwards what it was. `argc` and `argv`
/// outlive the application.
[[nodiscard]] std::unique_ptr<QApplication> makeApplication(int& argc, char** argv);

} // namespace kelvora
