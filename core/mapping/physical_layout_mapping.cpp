// SPDX-License-Identifier: MIT
#include "core/mapping/physical_layout_mapping.h"

#include <algorithm>
#include <utility>

#include "core/text/character_class.h"
#include "core/text/characters.h"
#include "core/text/normalization.h"

namespace kelvora {
namespace {

bool containsNumber(std::u16string_view text) {
    Characters characters(text);
    return std::ranges::any_of(characters.begin(), Characters::end(), isNumber);
}

} // namespace

PhysicalLayoutMapping::PhysicalLayoutMapping(std::span<const PhysicalKeyPair> pairs)
    : alphabets_(pairs) {
    forward_.reserve(pairs.size());
    backward_.reserve(pairs.size());
    for (const PhysicalKeyPair& pair : pairs) {
        add(pair);
    }
}

void PhysicalLayoutMapping::add(const PhysicalKeyPair& pair) {
    if (pair.first.empty() || pair.second.empty()) {
        return;
    }
    // Numbers are never rewritten, nor is what shares a key with one.
    const bool isKept = containsNumber(pair.first) || containsNumber(pair.second);
    const std::size_t firstLength = characterCount(pair.first);
    const std::size_t secondLength = characterCount(pair.second);
    forward_.add(pair.first, isKept ? pair.first : pair.second, firstLength);
    backward_.add(pair.second, isKept ? pair.second : pair.first, secondLength);
    maximumTokenLength_ = std::max({maximumTokenLength_, static_cast<std::int64_t>(firstLength),
                                    static_cast<std::int64_t>(secondLength)});
}

Translation PhysicalLayoutMapping::translate(std::u16string_view text, int sourceIndex,
                                             std::optional<std::int64_t> caret) const {
    const TokenTranslator& translator = sourceIndex == 0 ? forward_ : backward_;
    return translator.translate(text, static_cast<std::size_t>(maximumTokenLength_), caret);
}

std::u16string PhysicalLayoutMapping::convert(std::u16string_view text, int sourceIndex) const {
    return translate(text, sourceIndex, std::nullopt).text;
}

std::optional<int> PhysicalLayoutMapping::direction(std::u16string_view text,
                                                    std::optional<int> activeSourceIndex) const {
    const std::int64_t lead = alphabets_.lead(text);
    if (lead != 0) {
        return lead > 0 ? 0 : 1;
    }
    const auto isChangedFrom = [&](int sourceIndex) {
        return !canonicallyEqual(convert(text, sourceIndex), text);
    };
    if (activeSourceIndex == 0 || activeSourceIndex == 1) {
        return isChangedFrom(*activeSourceIndex) ? activeSourceIndex : std::nullopt;
    }
    const bool firstChanges = isChangedFrom(0);
    if (firstChanges == isChangedFrom(1)) {
        return std::nullopt;
    }
    return firstChanges ? 0 : 1;
}

std::optional<StringConversion>
PhysicalLayoutMapping::convertString(std::u16string_view text,
                                     std::optional<int> activeSourceIndex) const {
    const std::optional<int> source = direction(text, activeSourceIndex);
    if (!source) {
        return std::nullopt;
    }
    std::u16string converted = convert(text, *source);
    if (canonicallyEqual(converted, text)) {
        return std::nullopt;
    }
    return StringConversion{std::move(converted), 1 - *source};
}

} // namespace kelvora
