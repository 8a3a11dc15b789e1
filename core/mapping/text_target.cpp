// SPDX-License-Identifier: MIT
#include "core/mapping/text_target.h"

#include "core/text/character_class.h"
#include "core/text/characters.h"

namespace kelvora {
namespace {

std::optional<TextRange> boundedRange(CharacterSegmenter& segmenter, Utf16Range range) {
    const auto size = static_cast<std::int64_t>(segmenter.text().size());
    if (range.location < 0 || range.length < 0 || range.location > size ||
        range.length > size - range.location) {
        return std::nullopt;
    }
    const auto begin = static_cast<std::size_t>(range.location);
    const auto end = begin + static_cast<std::size_t>(range.length);
    if (!segmenter.isBoundary(begin) || !segmenter.isBoundary(end)) {
        return std::nullopt;
    }
    return TextRange{begin, end};
}

/// The character that ends at `end`, which is not the start of the text.
TextRange characterBefore(CharacterSegmenter& segmenter, std::size_t end) {
    return {segmenter.previous(end), end};
}

/// The end of the last word before `caret`, if it is on the same line.
std::optional<std::size_t> wordEndBefore(CharacterSegmenter& segmenter, std::size_t caret) {
    for (std::size_t end = caret; end > 0;) {
        const TextRange character = characterBefore(segmenter, end);
        const std::u16string_view text = character.in(segmenter.text());
        if (isLineBreak(text)) {
            return std::nullopt;
        }
        if (!isWhitespace(text)) {
            return end;
        }
        end = character.begin;
    }
    return std::nullopt;
}

std::size_t wordStartBefore(CharacterSegmenter& segmenter, std::size_t wordEnd) {
    std::size_t start = wordEnd;
    while (start > 0) {
        const TextRange character = characterBefore(segmenter, start);
        if (isWhitespace(character.in(segmenter.text()))) {
            break;
        }
        start = character.begin;
    }
    return start;
}

std::size_t wordEndAfter(CharacterSegmenter& segmenter, std::size_t position) {
    const std::u16string_view text = segmenter.text();
    while (position < text.size()) {
        const TextRange character{position, segmenter.next(position)};
        if (isWhitespace(character.in(text))) {
            break;
        }
        position = character.end;
    }
    return position;
}

} // namespace

std::optional<TextRange> TextTarget::validRange(Utf16Range range, std::u16string_view text) {
    CharacterSegmenter segmenter(text);
    return boundedRange(segmenter, range);
}

std::optional<TextRange> TextTarget::range(std::u16string_view text, Utf16Range selection) {
    CharacterSegmenter segmenter(text);
    const std::optional<TextRange> selected = boundedRange(segmenter, selection);
    if (!selected || !selected->isEmpty()) {
        return selected;
    }
    const std::size_t caret = selected->begin;
    const std::optional<std::size_t> wordEnd = wordEndBefore(segmenter, caret);
    if (!wordEnd) {
        return std::nullopt;
    }
    const std::size_t wordStart = wordStartBefore(segmenter, *wordEnd);
    const bool isTouching = *wordEnd == caret;
    return TextRange{wordStart, isTouching ? wordEndAfter(segmenter, caret) : *wordEnd};
}

} // namespace kelvora
