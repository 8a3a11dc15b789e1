// SPDX-License-Identifier: MIT
#include "app/conversion/focused_text_converter.h"

#include "app/conversion/keyboard_guard.h"
#include "app/io/event_posting.h"
#include "app/io/logger.h"
#include "core/text/normalization.h"

#include <utility>
#include <variant>

namespace kelvora {

namespace {

constexpr double verificationPause = 0.02; // seconds

/// The text of an attribute; absent when it could not be read or is no text.
std::optional<std::u16string> textIn(AccessibilityAttribute attribute) {
    auto* text = std::get_if<std::u16string>(&attribute.value);
    return attribute.error == AccessibilityError::success && text ? std::optional(std::move(*text))
                                                                  : std::nullopt;
}

/// Has the element taken `converted`? Some then report it as selected, others nothing.
bool hasTaken(AccessibilityElement& element, std::u16string_view converted) {
    const auto selected = textIn(element.copyAttributeValue(accessibilityAttribute::selectedText));
    const auto value = textIn(element.copyAttributeValue(accessibilityAttribute::value));
    return (selected && canonicallyEqual(*selected, converted)) ||
           (value && containsText(*value, converted));
}

} // namespace

AXPathResult FocusedTextConverter::tryAXPath(AccessibilityElement& element,
                                             const ConversionRequest& request,
                                             const ConversionServices& services) {
    const Logger& logger = services.logger;
    AccessibilityAttribute selection =
        element.copyAttributeValue(accessibilityAttribute::selectedText);
    if (selection.error != AccessibilityError::success) {
        logger.debug(
            "AX path: kAXSelectedTextAttribute copy error (%d). Falling back to clipboard.",
            static_cast<std::int32_t>(selection.error));
        if (selection.error != AccessibilityError::cannotComplete) {
            return {};
        }
        // It would take keys at a time when the user means something else with them.
        logger.info("AX path: the application does not answer. Nothing is sent.");
        return {ConversionOutcome::noText()};
    }
    const std::optional<std::u16string> selected = textIn(std::move(selection));
    if (!selected || selected->empty()) {
        logger.debug("AX path: no selected text. Falling back to clipboard.");
        return {convertWordAtCaret(element, request, services)};
    }
    const auto conversion = request.mapping.convertString(*selected, request.activeSourceIndex);
    if (!conversion) {
        logger.info("AX path: selected text is not convertible.");
        return {ConversionOutcome::noText(), true};
    }
    if (services.keyboard.hasLostFocus()) {
        logger.info("AX path: the focus has moved. Nothing is written.");
        return {ConversionOutcome::noText(), true};
    }

    const AccessibilityError error =
        element.setAttributeValue(accessibilityAttribute::selectedText, conversion->converted);
    if (error != AccessibilityError::success) {
        logger.debug("AX path: kAXSelectedTextAttribute set error (%d). Falling back to clipboard.",
                     static_cast<std::int32_t>(error));
        if (error != AccessibilityError::cannotComplete) {
            return {std::nullopt, true};
        }
        request.forgetTyped();
        logger.info("AX path: the application did not answer, or took the text otherwise than "
                    "asked. Nothing more is sent.");
        return {ConversionOutcome::noText(), true};
    }
    services.poster.sleep(verificationPause);
    if (!hasTaken(element, conversion->converted)) {
        logger.error(
            "AX path: verification failed (text unchanged in AX). Falling back to clipboard.");
        return {std::nullopt, true};
    }
    logger.info("AX path success: bundleID=%s, path=AX, selectionDetected=true, axErrors=%s, "
                "targetIndex=%ld",
                request.bundleID, "[]", conversion->targetIndex);
    request.forgetTyped();
    return {ConversionOutcome::converted(conversion->targetIndex), true};
}

} // namespace kelvora
