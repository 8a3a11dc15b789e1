// SPDX-License-Identifier: MIT
#include "app/conversion/focused_text_converter.h"

#include "app/conversion/keyboard_guard.h"
#include "app/io/event_posting.h"
#include "app/io/logger.h"
#include "core/text/characters.h"

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

/// What was typed between the trigger and now: the end of `text`, or nothing when that is not what
/// happened since.
std::u16string_view typedSinceTrigger(const ConversionRequest& request, std::u16string_view text) {
    const std::u16string_view before = request.textAtTrigger;
    return !before.empty() && text.starts_with(before) ? text.substr(before.size())
                                                       : std::u16string_view();
}

std::optional<TypedWord> readTypedWord(const ConversionRequest& request) {
    std::u16string text = request.typedText->text();
    if (text.empty()) {
        return std::nullopt;
    }
    // Keys pressed since the trigger belong to the layout that it switches to, but were typed in
    // the other one: the word is the one from before them, and they are read again with it.
    const std::u16string_view later = typedSinceTrigger(request, text);
    const auto before = std::u16string_view(text).substr(0, text.size() - later.size());
    std::optional<TypedWordConversion> conversion =
        request.mapping.convertTypedWord(before, request.activeSourceIndex);
    if (!conversion) {
        return std::nullopt;
    }
    if (!later.empty()) {
        const std::u16string reread = request.mapping.convert(later, 1 - conversion->targetIndex);
        conversion->deleteCount += static_cast<std::int64_t>(characterCount(later));
        conversion->insertion += reread;
        conversion->bufferAfter += reread;
    }
    return TypedWord{std::move(text), std::move(*conversion)};
}

/// The word to repair once the keyboards are held: `word`, unless the user typed on before. Absent
/// when what is before the caret cannot be told or has nothing to convert.
std::optional<TypedWord> settledWord(TypedWord word, const ConversionRequest& request,
                                     KeyboardGuard& keyboard) {
    for (int reading = 0; reading < maximumReadings; ++reading) {
        if (!keyboard.settle()) {
            return std::nullopt;
        }
        if (request.typedText->text() == word.text) {
            return word;
        }
        std::optional<TypedWord> newer = readTypedWord(request);
        if (!newer) {
            return std::nullopt;
        }
        word = std::move(*newer);
    }
    return std::nullopt;
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
    if (services.keyboard.isHolding()) {
        word = settledWord(std::move(*word), request, services.keyboard);
    }
    if (services.keyboard.hasLostFocus()) {
        // Another path would act on a window that the user did not mean.
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
    // Only if nothing came in between: what the monitor recorded since is newer.
    request.typedText->replace(word->text, conversion.bufferAfter);
    services.logger.info("Typed-word path success: bundleID=%s, deleted=%ld, targetIndex=%ld",
                         request.bundleID, conversion.deleteCount, conversion.targetIndex);
    return ConversionOutcome::converted(conversion.targetIndex);
}

} // namespace kelvora
