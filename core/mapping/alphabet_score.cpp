// SPDX-License-Identifier: MIT
#include "core/mapping/alphabet_score.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "core/text/character_class.h"
#include "core/text/characters.h"
#include "core/text/code_unit_traits.h"
#include "core/text/normalization.h"

namespace kelvora {
namespace {

using Table = DirectTable<std::int16_t>;

/// The lead of a code unit that may be part of a longer character, or lies beyond the table. So
/// large that one of them shows in the sum of a block.
constexpr std::int16_t indirect = 0x4000;

const Table& noLetters() {
    static const Table leads(
        [](char16_t unit) {
            return CodeUnitTraits::table().isStandalone(unit) ? std::int16_t{0} : indirect;
        },
        indirect);
    return leads;
}

/// The sum of the leads of at most a block of code units.
std::int32_t sumOf(const Table& leads, std::u16string_view units) {
    std::int32_t sum = 0;
    if (units.size() == Table::blockSize) {
        const Table::Block block(units.data(), Table::blockSize);
        if (Table::coversAll(block)) {
            for (const char16_t unit : block) {
                sum += leads.covered(unit);
            }
            return sum;
        }
    }
    for (const char16_t unit : units) {
        sum += leads[unit];
    }
    return sum;
}

bool isDirect(std::u16string_view character) {
    return character.size() == 1 && noLetters()[character.front()] != indirect;
}

using Layouts = std::uint8_t; // a union of the two below
constexpr Layouts firstLayout = 1;
constexpr Layouts secondLayout = 2;

std::int16_t leadFor(Layouts layouts) {
    return static_cast<std::int16_t>((layouts & firstLayout ? 1 : 0) -
                                     (layouts & secondLayout ? 1 : 0));
}

/// Which layouts have a letter.
struct Alphabets {
    std::vector<Layouts> direct = std::vector<Layouts>(Table::size);
    std::vector<char16_t> directLetters; // those with an entry above, each once
    std::map<std::u16string, Layouts, std::less<>> others;

    void addLetters(std::u16string_view text, Layouts layout) {
        for (const std::u16string_view character : Characters(text)) {
            if (isLetter(character)) {
                Layouts& layouts = layoutsOf(character);
                layouts = static_cast<Layouts>(layouts | layout);
            }
        }
    }

private:
    Layouts& layoutsOf(std::u16string_view letter) {
        if (!isDirect(letter)) {
            return others[std::u16string(letter)];
        }
        Layouts& layouts = direct[letter.front()];
        if (layouts == 0) {
            directLetters.push_back(letter.front());
        }
        return layouts;
    }
};

} // namespace

AlphabetScore::AlphabetScore(std::span<const PhysicalKeyPair> pairs) : direct_(noLetters()) {
    Alphabets alphabets;
    for (const PhysicalKeyPair& pair : pairs) {
        if (pair.isPrimary) {
            alphabets.addLetters(pair.first, firstLayout);
            alphabets.addLetters(pair.second, secondLayout);
        }
    }
    for (const char16_t letter : alphabets.directLetters) {
        direct_.set(letter, leadFor(alphabets.direct[letter]));
    }
    for (const auto& [letter, layouts] : alphabets.others) {
        others_.emplace(letter, leadFor(layouts));
    }
}

std::int64_t AlphabetScore::lead(std::u16string_view text) const {
    const CodeUnitTraits& traits = CodeUnitTraits::table();
    CharacterSegmenter segmenter(text);
    std::int64_t lead = 0;
    std::size_t position = 0;
    while (position < text.size()) {
        const std::size_t end = std::min(position + Table::blockSize, text.size());
        const std::int32_t blockLead = sumOf(direct_, text.substr(position, end - position));
        // The unit after the block may still join its last one.
        if (blockLead < indirect / 2 && (end == text.size() || traits.isStandalone(text[end]))) {
            lead += blockLead;
            position = end;
            continue;
        }
        while (position < end) {
            const std::size_t next = segmenter.next(position);
            lead += leadOf(text.substr(position, next - position));
            position = next;
        }
    }
    return lead;
}

std::int64_t AlphabetScore::leadOf(std::u16string_view character) const {
    if (isDirect(character)) {
        return direct_[character.front()];
    }
    const std::u16string letter = toNfc(character);
    if (isDirect(letter)) {
        return direct_[letter.front()];
    }
    const auto found = others_.find(letter);
    return found == others_.end() ? 0 : found->second;
}

} // namespace kelvora
