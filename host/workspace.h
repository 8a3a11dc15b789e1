// SPDX-License-Identifier: MIT
#pragma once

#include "host/focus_target.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace kelvora {

/// What may be done to an application's text beyond typing, as far as the desktop can tell.
enum class ApplicationKind {
    ordinary,
    /// Control combinations are commands there, or may be, as on another machine's screen: only
    /// typed text is repaired.
    terminal,
    noSelectAll, ///< selecting everything would do harm (files, drawings, documents)
};

struct FrontmostApplication {
    std::optional<std::string> bundleIdentifier; ///< absent when the desktop knows none
    ApplicationKind kind = ApplicationKind::ordinary;
    std::int64_t processIdentifier = 0; ///< 0 when unknown
};

/// What a change of the focus means for the keys that the tap tells of.
enum class FocusChange {
    keysSeen,   ///< they go elsewhere from here on, and every one is told of all along
    keysMissed, ///< some were not told of or will not be; a key that is down may come up unseen
};

/// The applications and the focus of the session. Main thread only.
class Workspace {
public:
    virtual ~Workspace() = default;

    /// Absent when no application has the focus.
    [[nodiscard]] virtual std::optional<FrontmostApplication> frontmostApplication() = 0;
    /// What has the keyboard focus at this moment.
    [[nodiscard]] virtual FocusTarget focusTarget() = 0;
    /// Called on the main thread whenever another window gets the focus, another client takes the
    /// keyboard, or it gives it back; in order with the events of the tap.
    virtual void setOnFocusChanged(std::function<void(FocusChange)> handler) = 0;
};

} // namespace kelvora
