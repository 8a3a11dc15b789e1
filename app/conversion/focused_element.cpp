// SPDX-License-Identifier: MIT
#include "app/conversion/focused_text_converter.h"

#include "app/io/event_posting.h"

#include <variant>

namespace kelvora {

namespace {

constexpr double lookUpPause = 0.05; // seconds

std::shared_ptr<AccessibilityElement> focusedElementOf(AccessibilityElement& element) {
    const AccessibilityAttribute focused =
        element.copyAttributeValue(accessibilityAttribute::focusedElement);
    const auto* value = std::get_if<std::shared_ptr<AccessibilityElement>>(&focused.value);
    return focused.error == AccessibilityError::success && value ? *value : nullptr;
}

} // namespace

void FocusedTextConverter::enableAccessibility(Accessibility& accessibility,
                                               std::int32_t processIdentifier) {
    const auto application = accessibility.createApplication(processIdentifier);
    // An application knows at most one of the two.
    static_cast<void>(
        application->setAttributeValue(accessibilityAttribute::manualAccessibility, true));
    static_cast<void>(
        application->setAttributeValue(accessibilityAttribute::enhancedUserInterface, true));
}

std::shared_ptr<AccessibilityElement>
FocusedTextConverter::focusedElement(std::int32_t processIdentifier,
                                     const ConversionServices& services) {
    Accessibility& accessibility = services.accessibility;
    if (processIdentifier == 0) {
        return systemWideFocusedElement(accessibility);
    }
    enableAccessibility(accessibility, processIdentifier);
    if (auto element = copyFocusedElement(accessibility, processIdentifier)) {
        return element;
    }
    // An application that was just asked to show its tree may need a moment to build it.
    services.poster.sleep(lookUpPause);
    if (auto element = copyFocusedElement(accessibility, processIdentifier)) {
        return element;
    }
    return systemWideFocusedElement(accessibility);
}

std::shared_ptr<AccessibilityElement>
FocusedTextConverter::copyFocusedElement(Accessibility& accessibility,
                                         std::int32_t processIdentifier) {
    const auto outer = focusedElementOf(*accessibility.createApplication(processIdentifier));
    if (!outer) {
        return nullptr;
    }
    // A web view names the field within it.
    const auto inner = focusedElementOf(*outer);
    return inner ? inner : outer;
}

std::shared_ptr<AccessibilityElement>
FocusedTextConverter::systemWideFocusedElement(Accessibility& accessibility) {
    return focusedElementOf(*accessibility.createSystemWide());
}

} // namespace kelvora
