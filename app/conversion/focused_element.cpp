// SPDX-License-Identifier: MIT
#include "app/conversion/focused_text_converter.h"

#include "app/io/event_posting.h"

#include <variant>

namespace kelvora {

namespace {

constexpr double lookUpPause = 0.05; // seconds

ElementLookUp focusedElementOf(AccessibilityElement& element) {
    const AccessibilityAttribute focused =
        element.copyAttributeValue(accessibilityAttribute::focusedElement);
    const auto* value = std::get_if<std::shared_ptr<AccessibilityElement>>(&focused.value);
    return {focused.error == AccessibilityError::success && value ? *value : nullptr,
            focused.error};
}

/// Was something found, or is there nobody to tell?
bool isFinal(const ElementLookUp& lookUp) {
    return lookUp.element || lookUp.error == AccessibilityError::cannotComplete;
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

ElementLookUp FocusedTextConverter::focusedElement(std::int32_t processIdentifier,
                                                   const ConversionServices& services) {
    Accessibility& accessibility = services.accessibility;
    if (processIdentifier == 0) {
        return systemWideFocusedElement(accessibility);
    }
    enableAccessibility(accessibility, processIdentifier);
    if (auto lookUp = copyFocusedElement(accessibility, processIdentifier); isFinal(lookUp)) {
        return lookUp;
    }
    // An application that was just asked to show its tree may need a moment to build it.
    services.poster.sleep(lookUpPause);
    if (auto lookUp = copyFocusedElement(accessibility, processIdentifier); isFinal(lookUp)) {
        return lookUp;
    }
    return systemWideFocusedElement(accessibility);
}

ElementLookUp FocusedTextConverter::copyFocusedElement(Accessibility& accessibility,
                                                       std::int32_t processIdentifier) {
    ElementLookUp outer = focusedElementOf(*accessibility.createApplication(processIdentifier));
    if (!outer.element) {
        return outer;
    }
    // A web view names the field within it.
    ElementLookUp inner = focusedElementOf(*outer.element);
    return isFinal(inner) ? inner : outer;
}

ElementLookUp FocusedTextConverter::systemWideFocusedElement(Accessibility& accessibility) {
    return focusedElementOf(*accessibility.createSystemWide());
}

} // namespace kelvora
