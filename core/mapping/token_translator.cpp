// SPDX-License-Identifier: MIT
#include "core/mapping/token_translator.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "core/text/code_unit_traits.h"
#include "core/text/normalization.h"

namespace kelvora {
namespace {

/// The step of a code unit that needs its neighbours or the map of tokens looked at. A surrogate,
/// so that it is nobody's translation.
constexpr char16_t indirect = 0xD800;

using Table = DirectTable<char16_t>;
using Steps = std::array<char16_t, Table::blockSize>;

const Table& untranslatedSteps() {
    static const Table steps(
        [](char16_t unit) { return CodeUnitTraits::table().isStandalone(unit) ? unit : indirect; },
        indirect);
    return steps;
}

/// Looks up the steps of at most a block of code units; returns how many come before the first
/// indirect one.
std::size_t lookUp(const Table& table, std::u16string_view units, Steps& steps) {
    if (units.size() == steps.size()) {
        const Table::Block block(units.data(), Table::blockSize);
        if (Table::coversAll(block)) {
            for (std::size_t i = 0; i < steps.size(); ++i) {
                steps[i] = table.covered(block[i]);
            }
            unsigned found = 0;
            for (const char16_t step : steps) {
                found |= static_cast<unsigned>(step == indirect);
            }
            if (found == 0) {
                return steps.size();
            }
        }
    }
    std::size_t count = 0;
    while (count < units.size()) {
        steps[count] = table[units[count]];
        if (steps[count] == indirect) {
            break;
        }
        ++count;
    }
    return count;
}

std::int64_t asCount(std::size_t size) {
    return static_cast<std::int64_t>(size);
}

/// UTF-16 length of the first `count` characters, or of the whole text if it has fewer.
std::size_t lengthOfCharacters(std::u16string_view text, std::int64_t count) {
    CharacterSegmenter segmenter(text);
    std::size_t length = 0;
    for (; count > 0 && length < text.size(); --count) {
        length = segmenter.next(length);
    }
    return length;
}

} // namespace

TokenTranslator::TokenTranslator() : steps_(untranslatedSteps()) {}

void TokenTranslator::add(std::u16string_view key, std::u16string_view value,
                          std::size_t keyLength) {
    if (!tokens_.insert(key, value)) {
        return;
    }
    const char16_t start = key.front();
    if (!Table::covers(start) || steps_[start] == indirect) {
        return;
    }
    const CodeUnitTraits& traits = CodeUnitTraits::table();
    if (keyLength > 1) {
        steps_.set(start, indirect); // a longer token may start here
    } else if (key.size() == 1) {
        const bool isUnit = value.size() == 1 && traits.isStandalone(value.front());
        steps_.set(start, isUnit ? value.front() : indirect);
    }
}

/// One pass over one text.
class TokenTranslator::Run {
public:
    Run(const TokenTranslator& translator, std::u16string_view text, std::size_t maximumTokenLength,
        std::optional<std::int64_t> caret)
        : translator_(translator), text_(text), segmenter_(text),
          maximumTokenLength_(maximumTokenLength), caret_(caret) {
        result_.reserve(text.size());
    }

    Translation translate() {
        while (position_ < text_.size()) {
            if (!takeDirect()) {
                takeToken();
            }
        }
        const std::int64_t end = asCount(result_.size());
        return {std::move(result_), convertedCaret_.value_or(end)};
    }

private:
    /// Takes the code units at the position that are characters and tokens by themselves, up to a
    /// block of them. False when there is none.
    bool takeDirect() {
        if (!standsAlone(position_)) {
            return false;
        }
        Steps steps;
        std::size_t count =
            lookUp(translator_.steps_, text_.substr(position_, steps.size()), steps);
        if (count == 0) {
            return false;
        }
        // The unit after the last may still join it.
        if (!standsAlone(position_ + count - 1)) {
            --count;
        }
        resolveCaret(count, [](std::int64_t characters) { return characters; });
        result_.append(steps.data(), count);
        position_ += count;
        return true;
    }

    /// Takes the longest token at the position, or the character there if there is none.
    void takeToken() {
        lookAhead();
        for (std::size_t length = ends_.size(); length > 0; --length) {
            const auto candidate = text_.substr(position_, ends_[length - 1] - position_);
            const std::u16string key = toNfc(candidate);
            if (const auto value = translator_.tokens_.find(key)) {
                return take(candidate, *value == key ? candidate : *value, length);
            }
        }
        const auto character = text_.substr(position_, ends_.front() - position_);
        take(character, character, 1);
    }

    void take(std::u16string_view token, std::u16string_view output, std::size_t length) {
        resolveCaret(length, [&](std::int64_t characters) {
            return asCount(lengthOfCharacters(output, characters));
        });
        result_.append(output);
        position_ += token.size();
        ends_.erase(ends_.begin(), ends_.begin() + static_cast<std::ptrdiff_t>(length));
    }

    /// Fills `ends_` with the ends of the next characters, as many as a token may have.
    void lookAhead() {
        if (!ends_.empty() && ends_.front() <= position_) {
            ends_.clear(); // left behind by the direct road
        }
        while (ends_.size() < maximumTokenLength_) {
            const std::size_t last = ends_.empty() ? position_ : ends_.back();
            if (last == text_.size()) {
                return;
            }
            ends_.push_back(segmenter_.next(last));
        }
    }

    /// Places the caret when it lies before the end of the next `characters` characters.
    /// `outputLength` tells the units that a number of characters of their output has.
    template <typename OutputLength>
    void resolveCaret(std::size_t characters, OutputLength outputLength) {
        const std::int64_t end = index_ + asCount(characters);
        if (caret_ && !convertedCaret_ && end >= *caret_) {
            const std::int64_t inside = std::max(*caret_, index_) - index_;
            convertedCaret_ = asCount(result_.size()) + outputLength(inside);
        }
        index_ = end;
    }

    [[nodiscard]] bool standsAlone(std::size_t position) const {
        return traits_.isStandalone(text_[position]) &&
               (position + 1 == text_.size() || traits_.isStandalone(text_[position + 1]));
    }

    const TokenTranslator& translator_;
    const CodeUnitTraits& traits_ = CodeUnitTraits::table();
    std::u16string_view text_;
    CharacterSegmenter segmenter_;
    std::size_t maximumTokenLength_;
    std::optional<std::int64_t> caret_;

    std::size_t position_ = 0;      // units of the text taken
    std::int64_t index_ = 0;        // characters of the text taken
    std::vector<std::size_t> ends_; // of the characters after the position
    std::u16string result_;
    std::optional<std::int64_t> convertedCaret_;
};

Translation TokenTranslator::translate(std::u16string_view text, std::size_t maximumTokenLength,
                                       std::optional<std::int64_t> caret) const {
    return Run(*this, text, maximumTokenLength, caret).translate();
}

} // namespace kelvora
