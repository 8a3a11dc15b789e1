// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/atspi/atspi_accessibility.h"
#include "host/linux/atspi/atspi_focus_follower.h"
#include "host/linux/atspi/atspi_opt_in.h"
#include "tests/host/x11/poll_loop.h"
#include "tests/support/real_desktop/real_desktop.h"
#include "tests/support/real_desktop/wait_until.h"
#include "tests/support/real_desktop/windows.h"

#include <memory>
#include <string>
#include <vector>

namespace kelvora {

/// A session whose bus this process finds as its own.
class AccessibleDesktop : public real::RealDesktop {
public:
    AccessibleDesktop();
};

/// What `request` answers, asked again as long as the application has no time to answer.
template <typename Request>
[[nodiscard]] AccessibilityError answerTo(const Request& request) {
    AccessibilityError answer = AccessibilityError::success;
    static_cast<void>(real::waitUntil([&] {
        answer = request();
        return answer != AccessibilityError::cannotComplete;
    }));
    return answer;
}

/// A window of tests/applications with one of its fields focused, and our view of it.
class Field {
public:
    /// `command` is the program and the field's name.
    Field(AccessibleDesktop& desktop, std::vector<std::string> command);

    [[nodiscard]] bool isReady() const { return isReady_; }
    /// The focused element as a conversion finds it; null when there is none.
    [[nodiscard]] std::shared_ptr<AccessibilityElement> focused();
    /// Empties the field and has the element write a text into it; false when it does not come to
    /// be shown.
    [[nodiscard]] bool write(const std::u16string& text);
    /// Waits until the window's title tells that the field holds this text, and stays so.
    [[nodiscard]] bool holds(const std::u16string& text);

    void tap(const char* keys, std::size_t times = 1);
    [[nodiscard]] std::u16string selected();
    /// Waits until that is selected, and replaces it.
    [[nodiscard]] AccessibilityError replaceSelection(const std::u16string& selection,
                                                      const std::u16string& replacement);
    [[nodiscard]] real::ChildProcess& program() { return program_; }
    [[nodiscard]] AtspiAccessibility& accessibility() { return accessibility_; }

private:
    AccessibleDesktop& desktop_;
    PollLoop loop_;
    AtspiFocusFollower follower_{loop_, [](const FocusReport&) {}};
    AtspiOptIn optIn_{std::filesystem::path()};
    AtspiAccessibility accessibility_{follower_, optIn_};
    real::ChildProcess program_;
    real::WindowId window_ = 0;
    bool isReady_ = false;
};

} // namespace kelvora
