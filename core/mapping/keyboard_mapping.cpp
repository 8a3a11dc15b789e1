// SPDX-License-Identifier: MIT
#include "core/mapping/keyboard_mapping.h"

#include <array>
#include <cstddef>

#include "core/text/characters.h"
#include "core/text/code_unit_traits.h"
#include "core/text/encoding.h"
#include "core/text/normalization.h"

namespace kelvora {
namespace {

/// What a code unit becomes, 0 when it is on no key. Wide enough for every key of the rows.
using Table = std::array<char16_t, 0x460>;

constexpr void addRow(Table& table, std::u16string_view from, std::u16string_view to) {
    for (std::size_t key = 0; key < from.size(); ++key) {
        table.at(from[key]) = to[key];
    }
}

constexpr Table latinToRussian = [] {
    Table table{};
    addRow(table, KeyboardMapping::unshiftedLatin, KeyboardMapping::unshiftedRussian);
    addRow(table, KeyboardMapping::shiftedLatin, KeyboardMapping::shiftedRussian);
    return table;
}();

constexpr Table russianToLatin = [] {
    Table table{};
    addRow(table, KeyboardMapping::unshiftedRussian, KeyboardMapping::unshiftedLatin);
    addRow(table, KeyboardMapping::shiftedRussian, KeyboardMapping::shiftedLatin);
    return table;
}();

char16_t lookUp(const Table& table, std::u16string_view character) {
    return character.size() == 1 && character.front() < table.size() ? table[character.front()]
                                                                     : char16_t{0};
}

bool isLatin(char32_t scalar) {
    return (scalar >= U'A' && scalar <= U'Z') || (scalar >= U'a' && scalar <= U'z');
}

bool isCyrillic(char32_t scalar) {
    return scalar >= 0x0400 && scalar <= 0x052F;
}

} // namespace

std::optional<KeyboardScript> KeyboardMapping::detectedScript(std::u16string_view text) {
    std::size_t latin = 0;
    std::size_t cyrillic = 0;
    for (std::size_t offset = 0; offset < text.size();) {
        const DecodedScalar scalar = decodeScalar(text, offset);
        latin += static_cast<std::size_t>(isLatin(scalar.value));
        cyrillic += static_cast<std::size_t>(isCyrillic(scalar.value));
        offset += scalar.length;
    }
    if (latin == 0 && cyrillic == 0) {
        return std::nullopt;
    }
    return latin < cyrillic ? KeyboardScript::cyrillic : KeyboardScript::latin;
}

std::u16string KeyboardMapping::convert(std::u16string_view text, KeyboardScript from) {
    const Table& table = from == KeyboardScript::cyrillic ? russianToLatin : latinToRussian;
    const CodeUnitTraits& traits = CodeUnitTraits::table();
    std::u16string result;
    result.reserve(text.size());
    for (const std::u16string_view character : Characters(text)) {
        char16_t unit = lookUp(table, character);
        if (unit == 0 && !traits.isStandalone(character)) {
            unit = lookUp(table, toNfc(character));
        }
        if (unit != 0) {
            result.push_back(unit);
        } else {
            result.append(character);
        }
    }
    return result;
}

std::optional<ScriptConversion> KeyboardMapping::converted(std::u16string_view text) {
    const std::optional<KeyboardScript> script = detectedScript(text);
    if (!script) {
        return std::nullopt;
    }
    return ScriptConversion{convert(text, *script), opposite(*script)};
}

} // namespace kelvora
