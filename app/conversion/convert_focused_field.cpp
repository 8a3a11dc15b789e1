// SPDX-License-Identifier: MIT
#include "app/conversion/focused_text_converter.h"

#include "app/conversion/app_text_behavior.h"
#include "app/conversion/keyboard_guard.h"
#include "app/io/logger.h"

namespace kelvora {

namespace {

bool isTerminal(const ConversionRequest& request) {
    return AppTextBehavior::isTerminal(request.bundleID) ||
           request.applicationKind == ApplicationKind::terminal;
}

/// Would selecting everything select one field's text? Not in a document, which is rewritten only
/// where the caret is, nor where there is no text to edit.
bool allowsSelectAll(const ConversionRequest& request, TextRole role) {
    return !AppTextBehavior::isCanvasEditor(request.bundleID) &&
           request.applicationKind != ApplicationKind::noSelectAll &&
           (role == TextRole::singleLine || role == TextRole::unknown);
}

ConversionOutcome convertSelection(AccessibilityElement* element, TextRole role,
                                   const ConversionRequest& request,
                                   const ConversionServices& services) {
    bool allowSelectAll = allowsSelectAll(request, role);
    if (element) {
        const AXPathResult result = FocusedTextConverter::tryAXPath(*element, request, services);
        if (result.outcome) {
            return *result.outcome;
        }
        // A write that was not seen may have changed the text and ended the selection: everything
        // would be converted instead.
        allowSelectAll = allowSelectAll && !result.hadSelection;
    } else {
        services.logger.debug(
            "AX path: no focused AX element found for %s. Using clipboard fallback.",
            request.bundleID);
    }
    return FocusedTextConverter::convertThroughClipboard(request, services, allowSelectAll);
}

} // namespace

ConversionOutcome FocusedTextConverter::convertFocusedField(const ConversionRequest& request,
                                                            const ConversionServices& services) {
    services.logger.info("Trigger: bundleID=%s, doubleShiftDetected=true", request.bundleID);
    if (request.typedText) {
        if (std::optional<ConversionOutcome> outcome = convertTypedText(request, services)) {
            return *outcome;
        }
    }
    const auto leaveTerminal = [&] {
        services.logger.info("Terminal: nothing typed since the caret moved. bundleID=%s",
                             request.bundleID);
        return ConversionOutcome::noText();
    };
    if (isTerminal(request)) {
        return leaveTerminal();
    }
    // The look-up may take a moment already, in which a person types on.
    if (!holdKeyboards(request, services)) {
        return ConversionOutcome::noText();
    }
    const ElementLookUp lookUp = request.element
                                     ? ElementLookUp{request.element}
                                     : focusedElement(request.processIdentifier, services);
    if (lookUp.error == AccessibilityError::cannotComplete) {
        // It would take keys at a time when the user means something else with them.
        services.logger.info("AX path: the application does not answer. Nothing is sent.");
        return ConversionOutcome::noText();
    }
    AccessibilityElement* const element = lookUp.element.get();
    const TextRole role = element ? element->role() : TextRole::unknown;
    if (role == TextRole::terminal) {
        // A terminal inside of another application.
        return leaveTerminal();
    }
    if (role == TextRole::password) {
        request.forgetTyped();
        return ConversionOutcome::noText();
    }
    if (role == TextRole::notEditable) {
        // A paste would change nothing there, or a formula, or make a file; it would be taken for
        // a success all the same.
        services.logger.info("AX path: the focused element cannot be edited. Nothing is sent.");
        return ConversionOutcome::noText();
    }
    return convertSelection(element, role, request, services);
}

bool FocusedTextConverter::holdKeyboards(const ConversionRequest& request,
                                         const ConversionServices& services) {
    const std::u16string typedBefore =
        request.textAtTrigger.value_or(request.typedText ? request.typedText->text() : u"");
    KeyboardGuard& keyboard = services.keyboard;
    if (!keyboard.isHolding()) {
        keyboard.begin();
    }
    if ((keyboard.isHolding() && !keyboard.settle()) || keyboard.hasLostFocus()) {
        return false;
    }
    return !request.typedText || request.typedText->text() == typedBefore;
}

} // namespace kelvora
