// SPDX-License-Identifier: MIT
// Conversions between two layouts of any keys, against a translation character by character.
#include "core/mapping/keyboard_mapping.h"
#include "core/mapping/physical_layout_mapping.h"
#include "core/mapping/text_target.h"
#include "core/text/character_class.h"
#include "core/text/normalization.h"
#include "fuzz/input.h"
#include "fuzz/plain_text.h"

#include <algorithm>
#include <array>
#include <limits>
#include <map>
#include <set>
#include <vector>

namespace kelvora::fuzz {
namespace {

constexpr std::size_t longestKeyText = 6;
constexpr std::size_t mostPairs = 24;

std::vector<PhysicalKeyPair> takePairs(Input& input) {
    std::vector<PhysicalKeyPair> pairs;
    if (input.flag()) {
        const auto addRow = [&](std::u16string_view latin, std::u16string_view russian) {
            for (std::size_t key = 0; key < latin.size(); ++key)
                pairs.emplace_back(latin.substr(key, 1), russian.substr(key, 1));
        };
        addRow(KeyboardMapping::unshiftedLatin, KeyboardMapping::unshiftedRussian);
        addRow(KeyboardMapping::shiftedLatin, KeyboardMapping::shiftedRussian);
    }
    for (std::size_t count = input.below(mostPairs); count > 0; --count) {
        const std::u16string first = takeText(input, longestKeyText);
        const std::u16string second = takeText(input, longestKeyText);
        pairs.emplace_back(first, second, input.flag());
    }
    return pairs;
}

/// The same mapping, the plain way.
class PlainMapping {
public:
    explicit PlainMapping(const std::vector<PhysicalKeyPair>& pairs) {
        for (const PhysicalKeyPair& pair : pairs) {
            if (pair.isPrimary) {
                addLetters(pair.first, letters_[0]);
                addLetters(pair.second, letters_[1]);
            }
            if (pair.first.empty() || pair.second.empty())
                continue;
            const bool isKept = hasNumber(pair.first) || hasNumber(pair.second);
            tokens_[0].try_emplace(pair.first, isKept ? pair.first : pair.second);
            tokens_[1].try_emplace(pair.second, isKept ? pair.second : pair.first);
            longest_ = std::max({longest_, plainCharacters(pair.first).size(),
                                 plainCharacters(pair.second).size()});
        }
    }

    [[nodiscard]] std::size_t longest() const { return longest_; }

    [[nodiscard]] Translation translate(std::u16string_view text, int from,
                                        std::optional<std::int64_t> caret) const {
        const auto& tokens = tokens_[from == 0 ? 0 : 1];
        const std::vector<std::size_t> ends = plainBoundaries(text);
        Translation result;
        bool isCaretPlaced = false;
        for (std::size_t at = 0; at + 1 < ends.size();) {
            std::size_t length = std::min(longest_, ends.size() - 1 - at);
            auto found = tokens.end();
            std::u16string_view source;
            for (; length > 0; --length) {
                source = text.substr(ends[at], ends[at + length] - ends[at]);
                found = tokens.find(plainNfc(source));
                if (found != tokens.end())
                    break;
            }
            length = std::max<std::size_t>(length, 1);
            source = text.substr(ends[at], ends[at + length] - ends[at]);
            const bool isChanged = found != tokens.end() && found->first != found->second;
            const std::u16string_view output = isChanged ? found->second : source;
            const auto first = static_cast<std::int64_t>(at);
            const auto last = static_cast<std::int64_t>(at + length);
            if (caret && !isCaretPlaced && last >= *caret) {
                const auto inside = static_cast<std::size_t>(std::max(*caret, first) - first);
                const std::vector<std::size_t> outputEnds = plainBoundaries(output);
                result.caret = static_cast<std::int64_t>(
                    result.text.size() + outputEnds[std::min(inside, outputEnds.size() - 1)]);
                isCaretPlaced = true;
            }
            result.text += output;
            at += length;
        }
        if (!isCaretPlaced)
            result.caret = static_cast<std::int64_t>(result.text.size());
        return result;
    }

    [[nodiscard]] std::optional<int> direction(std::u16string_view text,
                                               std::optional<int> active) const {
        std::int64_t lead = 0;
        for (const std::u16string_view character : plainCharacters(text)) {
            const std::u16string letter = plainNfc(character);
            lead += letters_[0].contains(letter) ? 1 : 0;
            lead -= letters_[1].contains(letter) ? 1 : 0;
        }
        if (lead != 0)
            return lead > 0 ? 0 : 1;
        const auto isChanged = [&](int from) {
            return plainNfc(translate(text, from, std::nullopt).text) != plainNfc(text);
        };
        if (active == 0 || active == 1)
            return isChanged(*active) ? active : std::nullopt;
        if (isChanged(0) == isChanged(1))
            return std::nullopt;
        return isChanged(0) ? 0 : 1;
    }

private:
    static void addLetters(std::u16string_view text, std::set<std::u16string>& letters) {
        for (const std::u16string_view character : plainCharacters(text)) {
            if (isLetter(character))
                letters.emplace(character);
        }
    }

    static bool hasNumber(std::u16string_view text) {
        return std::ranges::any_of(plainCharacters(text), isNumber);
    }

    std::map<std::u16string, std::u16string> tokens_[2];
    std::set<std::u16string> letters_[2];
    std::size_t longest_ = 1;
};

struct Question {
    std::u16string text;
    std::optional<int> active;
    std::optional<std::int64_t> caret;
    Utf16Range selection;
};

/// Mostly inside the text, at times anywhere.
std::int64_t takeOffset(Input& input) {
    using Limits = std::numeric_limits<std::int64_t>;
    const std::uint8_t byte = input.byte();
    switch (byte) {
    case 0xFC:
        return -1;
    case 0xFD:
        return Limits::min();
    case 0xFE:
        return Limits::max();
    case 0xFF:
        return input.number<std::int64_t>();
    default:
        return byte;
    }
}

Question takeQuestion(Input& input) {
    Question question;
    question.active = std::array<std::optional<int>, 4>{std::nullopt, 0, 1, 7}[input.below(4)];
    if (input.flag())
        question.caret = takeOffset(input);
    question.selection = {takeOffset(input), takeOffset(input)};
    // Text is looked through in blocks; what matters may lie across the end of one.
    question.text.assign(input.below(140), u' ');
    question.text += takeText(input);
    return question;
}

void checkTranslation(const PhysicalLayoutMapping& mapping, const PlainMapping& plain,
                      const Question& question) {
    require(mapping.maximumTokenLength() == static_cast<std::int64_t>(plain.longest()),
            "the longest token is counted in characters");
    for (const int from : {0, 1}) {
        const Translation expected = plain.translate(question.text, from, question.caret);
        require(mapping.translate(question.text, from, question.caret) == expected,
                "both roads translate alike");
        require(mapping.convert(question.text, from) == expected.text,
                "the caret does not change the text");
    }
    const std::optional<int> direction = plain.direction(question.text, question.active);
    require(mapping.direction(question.text, question.active) == direction,
            "both roads decide alike");
    const auto conversion = mapping.convertString(question.text, question.active);
    const std::u16string converted = mapping.convert(question.text, direction.value_or(0));
    require(conversion.has_value() == (direction && !canonicallyEqual(converted, question.text)),
            "a string is converted when that is decided and changes it");
    if (conversion)
        require(conversion->converted == converted && conversion->targetIndex == 1 - *direction,
                "a string is converted as a whole, into the other layout");
}

bool isOneWord(std::u16string_view text) {
    return std::ranges::none_of(plainCharacters(text), isWhitespace);
}

/// A word that a caret is in, or has left by spaces only: as long as it can be.
void checkWord(const Question& question, TextRange word) {
    const std::u16string_view text = question.text;
    const auto caret = static_cast<std::size_t>(question.selection.location);
    require(word.begin < word.end && word.begin <= caret && isOneWord(word.in(text)),
            "a caret's target is one word that starts before it");
    const std::u16string_view before = text.substr(0, word.begin);
    require(before.empty() || isWhitespace(plainCharacters(before).back()),
            "the word begins there");
    if (word.end < caret) {
        for (const auto character : plainCharacters(text.substr(word.end, caret - word.end)))
            require(isWhitespace(character) && !isLineBreak(character),
                    "only spaces lie between a word and the caret");
    } else if (word.end < text.size()) {
        require(isWhitespace(plainCharacters(text.substr(word.end)).front()),
                "the word ends there");
    }
}

void checkTarget(const Question& question) {
    const std::u16string_view text = question.text;
    const Utf16Range selection = question.selection;
    const std::vector<std::size_t> boundaries = plainBoundaries(text);
    const auto isBoundary = [&](std::int64_t offset) {
        return offset >= 0 &&
               std::ranges::binary_search(boundaries, static_cast<std::size_t>(offset));
    };
    const bool isValid = isBoundary(selection.location) && selection.length >= 0 &&
                         selection.length <= static_cast<std::int64_t>(text.size()) &&
                         isBoundary(selection.location + selection.length);
    const auto range = TextTarget::validRange(selection, text);
    require(range.has_value() == isValid, "a range is whole characters of the text");
    require(!range || range->utf16Range() == selection, "a valid range is what was given");

    const auto target = TextTarget::range(text, selection);
    require(!target || range, "a target comes of a valid selection");
    if (!range)
        return;
    if (!range->isEmpty()) {
        require(target == range, "a selection is the target as it is");
    } else if (target) {
        checkWord(question, *target);
    } else {
        const auto before = plainCharacters(text.substr(0, range->begin));
        const auto last = std::find_if(before.rbegin(), before.rend(), [](auto character) {
            return isLineBreak(character) || !isWhitespace(character);
        });
        require(last == before.rend() || isLineBreak(*last), "no word is left out");
    }
}

void checkField(const PhysicalLayoutMapping& mapping, const Question& question) {
    const std::u16string_view text = question.text;
    const auto field = mapping.convertField(text, question.selection, question.active);
    require(!mapping.convertField(text, std::nullopt, question.active),
            "without a selection there is nothing to convert");
    if (!field)
        return;
    const auto target = TextTarget::range(text, question.selection);
    require(target && field->replacementRange == target->utf16Range(),
            "what is replaced is the target");
    const auto conversion = mapping.convertString(target->in(text), question.active);
    require(conversion && conversion->converted == field->replacement &&
                conversion->targetIndex == field->targetIndex,
            "the replacement is the conversion of the target");
    std::u16string expected(text);
    expected.replace(target->begin, target->end - target->begin, field->replacement);
    require(field->text == expected, "nothing else of the field changes");
    require(field->selectedRange &&
                TextTarget::validRange(*field->selectedRange, field->text).has_value(),
            "the new selection fits the new text");
}

void checkTypedWord(const PhysicalLayoutMapping& mapping, const Question& question) {
    const auto edit = mapping.convertTypedWord(question.text, question.active);
    const Utf16Range end{static_cast<std::int64_t>(question.text.size()), 0};
    require(edit.has_value() ==
                mapping.convertField(question.text, end, question.active).has_value(),
            "a typed word is the word before a caret at the end");
    if (!edit)
        return;
    const std::vector<std::size_t> boundaries = plainBoundaries(question.text);
    require(edit->deleteCount >= 1 &&
                edit->deleteCount < static_cast<std::int64_t>(boundaries.size()),
            "no more is erased than was typed");
    const std::size_t kept =
        boundaries[boundaries.size() - 1 - static_cast<std::size_t>(edit->deleteCount)];
    require(edit->bufferAfter == question.text.substr(0, kept) + edit->insertion,
            "erasing and typing gives the text that is remembered");
    require(edit->targetIndex == 0 || edit->targetIndex == 1, "there are two layouts");
}

void checkBuiltIn(std::u16string_view text) {
    for (const KeyboardScript from : {KeyboardScript::latin, KeyboardScript::cyrillic}) {
        std::u16string expected;
        for (const std::u16string_view character : plainCharacters(text))
            expected += KeyboardMapping::convert(character, from);
        require(KeyboardMapping::convert(text, from) == expected,
                "a text is converted like its characters");
    }
    const std::u16string latin =
        std::u16string(KeyboardMapping::unshiftedLatin).append(KeyboardMapping::shiftedLatin);
    std::u16string typed;
    std::ranges::copy_if(text, std::back_inserter(typed),
                         [&](char16_t unit) { return latin.find(unit) != latin.npos; });
    const std::u16string there = KeyboardMapping::convert(typed, KeyboardScript::latin);
    require(there.size() == typed.size() &&
                KeyboardMapping::convert(there, KeyboardScript::cyrillic) == typed,
            "what the keys type comes back");
    const auto conversion = KeyboardMapping::converted(text);
    require(!conversion ||
                conversion->text == KeyboardMapping::convert(text, opposite(conversion->script)),
            "the script that is found is converted from");
}

} // namespace
} // namespace kelvora::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kelvora;
    using namespace kelvora::fuzz;
    Input input(data, size);
    const std::vector<PhysicalKeyPair> pairs = takePairs(input);
    const Question question = takeQuestion(input);
    const PhysicalLayoutMapping mapping(pairs);
    checkTranslation(mapping, PlainMapping(pairs), question);
    checkTarget(question);
    checkField(mapping, question);
    checkTypedWord(mapping, question);
    checkBuiltIn(question.text);
    return 0;
}
