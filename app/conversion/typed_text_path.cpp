// SPDX-License-Identifier: MIT
#include "app/conversion/focused_text_converter.h"

#include "app/conversion/keyboard_guard.h"
#include "app/io/event_posting.h"
#include "app/io/logger.h"
#include "core/text/character_class.h"
#include "core/text/characters.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

namespace kelvora {

namespace {

constexpr double modifierTimeout = 0.3; // seconds
constexpr double backspaceDelay = 0.008;

/// How often the word is read again before the path gives up: with the keyboards held, only other
/// programs' keys and the mouse can still change what was typed.
constexpr int maximumReadings = 3;

struct TypedWord {
    std::u16string text; ///< all of the buffer, as it was converted
    TypedWordConversion conversion;
};

/// Applications differ in how much of some characters one Backspace erases.
bool isErasedByBackspaces(std::u16string_view text, std::int64_t characters) {
    CharacterSegmenter segmenter(text);
    std::size_t end = text.size();
    for (; characters > 0 && end > 0; --characters) {
        const std::size_t begin = segmenter.previous(end);
        if (!isErasedAtOnce(text.substr(begin, end - begin))) {
            return false;
        }
        end = begin;
    }
    return true;
}

/// What was typed between the trigger and now: the end of `text`, or nothing when that is not what
/// happened since.
std::u16string_view typedSince(std::u16string_view before, std::u16string_view text) {
    if (text.starts_with(before)) {
        return text.substr(before.size());
    }
    // A full buffer has dropped its oldest characters for the new ones.
    if (characterCount(text) < TypedTextBuffer::maximumLength) {
        return {};
    }
    while (!before.empty() && !text.starts_with(before)) {
        before.remove_prefix(1);
    }
    return before.empty() ? std::u16string_view() : text.substr(before.size());
}

std::optional<TypedWord> readTypedWord(const ConversionRequest& request) {
    std::u16string text = request.typedText->text();
    if (text.empty()) {
        return std::nullopt;
    }
    // Keys pressed since the trigger are not part of the word that it is about.
    const std::u16string_view later = typedSince(request.textAtTrigger.value_or(text), text);
    const auto before = std::u16string_view(text).substr(0, text.size() - later.size());
    std::optional<TypedWordConversion> conversion =
        request.mapping.convertTypedWord(before, request.activeSourceIndex);
    if (!conversion) {
        return std::nullopt;
    }
    if (!later.empty()) {
        // They belong to the layout that is switched to. Where another one was active, they are
        // read again as keys of it.
        const bool isInTarget = request.activeSourceIndex == conversion->targetIndex;
        const std::u16string reread =
            isInTarget ? std::u16string(later)
                       : request.mapping.convert(later, 1 - conversion->targetIndex);
        conversion->deleteCount += static_cast<std::int64_t>(characterCount(later));
        conversion->insertion += reread;
        conversion->bufferAfter += reread;
    }
    if (!isErasedByBackspaces(text, conversion->deleteCount)) {
        return std::nullopt;
    }
    return TypedWord{std::move(text), std::move(*conversion)};
}

/// Brings `word` up to date once the keyboards are held: the user may have typed on before. Empty
/// when there is nothing to convert any more. False when what is before the caret cannot be told.
[[nodiscard]] bool settle(std::optional<TypedWord>& word, const ConversionRequest& request,
                          KeyboardGuard& keyboard) {
    for (int reading = 0; reading < maximumReadings; ++reading) {
        if (!keyboard.settle()) {
            return false;
        }
        if (!word || request.typedText->text() == word->text) {
            return true;
        }
        word = readTypedWord(request);
    }
    return false;
}

} // namespace

std::optional<ConversionOutcome>
FocusedTextConverter::convertTypedText(const ConversionRequest& request,
                                       const ConversionServices& services) {
    std::optional<TypedWord> word = readTypedWord(request);
    if (!word) {
        return std::nullopt;
    }
    services.poster.waitForModifiersReleased(modifierTimeout);

    services.keyboard.begin();
    const bool isSettled =
        !services.keyboard.isHolding() || settle(word, request, services.keyboard);
    if (!isSettled || services.keyboard.hasLostFocus()) {
        // Another path would act on text or a window that the user did not mean.
        services.keyboard.end();
        return ConversionOutcome::noText();
    }
    if (!word) {
        services.keyboard.end();
        return std::nullopt;
    }

    const TypedWordConversion& conversion = word->conversion;
    for (std::int64_t press = 0; press < conversion.deleteCount; ++press) {
        services.poster.sendKey(keyCode::backspace, 0, backspaceDelay);
    }
    services.poster.typeText(conversion.insertion);
    if (services.keyboard.hasFailed()) {
        // The window is gone or somebody keeps the keyboard: what is before the caret is not known.
        request.typedText->reset();
        services.keyboard.end();
        return ConversionOutcome::noText();
    }
    // Only if nothing came in between: what the monitor recorded since is newer.
    request.typedText->replace(word->text, conversion.bufferAfter);
    services.logger.info("Typed-word path success: bundleID=%s, deleted=%ld, targetIndex=%ld",
                         request.bundleID, conversion.deleteCount, conversion.targetIndex);
    return ConversionOutcome::converted(conversion.targetIndex);
}

} // namespace kelvora
