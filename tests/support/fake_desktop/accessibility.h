// SPDX-License-Identifier: MIT
#pragma once

#include "host/accessibility.h"
#include "tests/support/fake_desktop/scheduler.h"
#include "tests/support/fake_desktop/windows.h"

#include <map>
#include <string>
#include <vector>

namespace kelvora::fake {

/// What assistive programs see of the windows' texts: nothing, unless the test gives them a view.
class Accessibility final : public kelvora::Accessibility {
public:
    Accessibility(Windows& windows, Scheduler& scheduler)
        : windows_(windows), scheduler_(scheduler) {}

    /// How a window shows its text.
    struct View {
        TextRole role = TextRole::singleLine;
        double visibleFrom = 0; ///< on the scheduler's clock
        /// The focused element that its element itself names.
        AccessibilityAttribute inner{AccessibilityError::attributeUnsupported, {}};
        std::map<std::string_view, AccessibilityError> readErrors{};
        AccessibilityError writeError = AccessibilityError::success;
        bool ignoresWrites = false;  ///< without an error
        bool selectsWritten = false; ///< a new text is selected
        bool hasReadableText = true; ///< around the caret
        AccessibilityError replaceError = AccessibilityError::success;
    };
    std::map<std::uint64_t, View> views; ///< by window

    /// What was asked, in order: "read AXValue", "around caret"; the opt-in as "enable 101
    /// AXManualAccessibility".
    std::vector<std::string> requests;

    [[nodiscard]] std::shared_ptr<AccessibilityElement> element(std::uint64_t window);

    [[nodiscard]] std::shared_ptr<AccessibilityElement>
    createApplication(std::int32_t processIdentifier) override;
    [[nodiscard]] std::shared_ptr<AccessibilityElement> createSystemWide() override;

private:
    class Element;

    [[nodiscard]] AccessibilityAttribute visibleElement(std::uint64_t window);

    Windows& windows_;
    Scheduler& scheduler_;
};

} // namespace kelvora::fake
