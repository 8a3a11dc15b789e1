// SPDX-License-Identifier: MIT
#pragma once

#include <QUrl>

namespace kelvora {

/// Pages about the program.
class KelvoraLinks {
public:
    KelvoraLinks() = delete;

    /// The guide that is installed with the program; of a program that is not installed, the one in
    /// its sources.
    [[nodiscard]] static const QUrl& howTo();
};

} // namespace kelvora
