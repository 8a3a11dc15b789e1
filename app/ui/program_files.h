// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace kelvora {

/// The path of a file that comes with the program: beside the program in a build, else in
/// `installedDirectory`, which is relative to the program's own directory, so that an installation
/// may be moved as a whole. The file need not exist. After the application object was made.
[[nodiscard]] QString programsOwnFile(const QString& name, const QString& installedDirectory);

} // namespace kelvora
