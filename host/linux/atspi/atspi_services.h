// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/atspi/atspi_accessibility.h"
#include "host/linux/atspi/atspi_focus_follower.h"
#include "host/linux/atspi/atspi_opt_in.h"

namespace kelvora {

/// The session's accessibility, and what it tells of the focus. Works, and answers `apiDisabled`,
/// without a session bus too. Main thread only.
class AtspiServices {
public:
    /// Both arguments outlive the services.
    AtspiServices(EventLoop& loop, SecureEntry& secureEntry);
    ~AtspiServices();
    AtspiServices(const AtspiServices&) = delete;
    AtspiServices& operator=(const AtspiServices&) = delete;

    [[nodiscard]] Accessibility& accessibility() { return accessibility_; }

private:
    SecureEntry& secureEntry_;
    AtspiFocusFollower follower_;
    AtspiOptIn optIn_{AtspiOptIn::defaultStateDirectory()};
    AtspiAccessibility accessibility_{follower_, optIn_};
};

} // namespace kelvora
