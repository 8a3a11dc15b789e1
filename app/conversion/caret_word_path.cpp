// SPDX-License-Identifier: MIT
#include "app/conversion/focused_text_converter.h"

#include "app/conversion/keyboard_guard.h"
#include "app/io/logger.h"

#include <algorithm>

namespace kelvora {

namespace {

/// UTF-16 units on each side of the caret: a document may be of any length, and no word that a
/// person typed is that long.
constexpr std::size_t reach = 1000;

/// What documents have in the place of an image or a footnote; replaced, it would be lost.
constexpr char16_t embeddedObject = 0xFFFC;

struct WordConversion {
    std::size_t begin = 0; // of the word, in the stretch
    std::size_t end = 0;
    FieldConversion field;
};

std::optional<WordConversion> convertWord(const TextStretch& stretch,
                                          const ConversionRequest& request) {
    const Utf16Range caret{static_cast<std::int64_t>(stretch.caret), 0};
    auto field = request.mapping.convertField(stretch.text, caret, request.activeSourceIndex);
    if (!field) {
        return std::nullopt;
    }
    const auto begin = static_cast<std::size_t>(field->replacementRange.location);
    const std::size_t end = begin + static_cast<std::size_t>(field->replacementRange.length);
    // At an edge of the stretch it may be a part of a longer word.
    const bool isWhole =
        (begin > 0 || stretch.beginsAtStart) && (end < stretch.text.size() || stretch.endsAtEnd);
    const auto word = std::u16string_view(stretch.text).substr(begin, end - begin);
    if (!isWhole || std::ranges::find(word, embeddedObject) != word.end()) {
        return std::nullopt;
    }
    return WordConversion{begin, end, std::move(*field)};
}

} // namespace

std::optional<ConversionOutcome>
FocusedTextConverter::convertWordAtCaret(AccessibilityElement& element,
                                         const ConversionRequest& request,
                                         const ConversionServices& services) {
    const Logger& logger = services.logger;
    if (element.role() != TextRole::multiLine) {
        return std::nullopt;
    }
    // Whatever fails here, the clipboard is no way out: many editors copy the whole line when
    // nothing is selected, and pasting that would double it.
    const std::optional<TextStretch> stretch = element.textAroundCaret(reach);
    if (!stretch) {
        logger.info("AX word: no text around the caret. Nothing is sent.");
        return ConversionOutcome::noText();
    }
    const std::optional<WordConversion> word = convertWord(*stretch, request);
    if (!word) {
        logger.info("AX word: no convertible word at the caret.");
        return ConversionOutcome::noText();
    }
    if (services.keyboard.hasLostFocus()) {
        logger.info("AX word: the focus has moved. Nothing is written.");
        return ConversionOutcome::noText();
    }
    const FieldConversion& field = word->field;
    const auto caret = static_cast<std::size_t>(field.selectedRange->location) - word->begin;
    const AccessibilityError error =
        element.replace(*stretch, word->begin, word->end, field.replacement, caret);
    request.forgetTyped();
    if (error != AccessibilityError::success) {
        logger.error("AX word: replacement error (%d). Nothing more is sent.",
                     static_cast<std::int32_t>(error));
        return ConversionOutcome::noText();
    }
    logger.info("AX word success: bundleID=%s, path=AX word, targetIndex=%ld", request.bundleID,
                field.targetIndex);
    return ConversionOutcome::converted(field.targetIndex);
}

} // namespace kelvora
