// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/desktop/desktop_entries.h"
#include "host/workspace.h"

#include <optional>
#include <string>

namespace kelvora {

struct ApplicationIdentity {
    /// UTF-8 without control characters; absent when nothing is known.
    std::optional<std::string> bundleIdentifier;
    ApplicationKind kind = ApplicationKind::ordinary;

    friend bool operator==(const ApplicationIdentity&, const ApplicationIdentity&) = default;
};

/// Who an application is and what may be done to it, from its window and what the installed desktop
/// entries tell about it. The identifier is, in this order: the well-known one of a program that
/// has one on every platform, the entry's ID, the GTK application ID, the window class in lower
/// case, the name of the program file. Pure; any thread.
[[nodiscard]] ApplicationIdentity
identifyApplication(const ApplicationTraits& application,
                    const std::optional<DesktopEntryMatch>& entry);

} // namespace kelvora
