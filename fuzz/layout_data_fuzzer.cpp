// SPDX-License-Identifier: MIT
// The bytes that describe a keyboard layout: the server's names of it, and the table of its keys.
#include "core/mapping/system_keyboard_mapping.h"
#include "core/text/character_class.h"
#include "core/text/encoding.h"
#include "core/text/normalization.h"
#include "fuzz/input.h"
#include "fuzz/plain_text.h"
#include "host/linux/xkb/key_layout_data.h"
#include "host/linux/xkb/layout_names.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>
#include <vector>

namespace kelvora::fuzz {
namespace {

bool isPlainName(std::string_view name) {
    return std::ranges::all_of(name, [](char unit) { return unit > ' ' && unit < '\x7F'; });
}

void checkNames(std::string_view property) {
    const RulesNames names = parseRulesNames(property);
    require(isPlainName(names.model), "a model is a plain name");
    require(names.layouts.size() <= 64, "the list of layouts has an end");
    std::string layouts;
    std::string variants;
    for (const LayoutAndVariant& each : names.layouts) {
        require(!each.layout.empty() && isPlainName(each.layout) && isPlainName(each.variant),
                "layouts and variants are plain names");
        require((each.layout + each.variant).find(',') == std::string::npos,
                "lists are taken apart");
        layouts.append(layouts.empty() ? "" : ",").append(each.layout);
        variants.append(&each == names.layouts.data() ? "" : ",").append(each.variant);
    }
    const std::string again = std::string("evdev")
                                  .append(1, '\0')
                                  .append(names.model)
                                  .append(1, '\0')
                                  .append(layouts)
                                  .append(1, '\0')
                                  .append(variants);
    const RulesNames reread = parseRulesNames(again);
    require(reread.model == names.model && reread.layouts == names.layouts,
            "what was read is written and read alike");
    const std::uint32_t type = keyboardTypeForModel(property);
    require(type == keyboardTypeCode::ansi || type == keyboardTypeCode::iso ||
                type == keyboardTypeCode::jis,
            "every model has a shape");
}

constexpr std::size_t unitSize = 2;
constexpr std::size_t headerUnits = 3;
constexpr std::size_t entryCount = 8 * 53; // combinations of modifiers, and keys

void append(std::vector<std::byte>& bytes, std::uint16_t unit) {
    bytes.push_back(static_cast<std::byte>(unit & 0xFF));
    bytes.push_back(static_cast<std::byte>(unit >> 8));
}

/// A table with a good header, and entries of all kinds that repeat: short texts for the most part.
std::vector<std::byte> takeTable(Input& input) {
    const std::u16string pool = takeText(input, 600);
    const std::string_view kinds = input.bytes(1 + input.below(64));
    std::vector<std::byte> bytes;
    append(bytes, 0x4B4C);
    append(bytes, 1);
    append(bytes, static_cast<std::uint16_t>(pool.size()));
    for (std::size_t entry = 0; entry < entryCount; ++entry) {
        const auto kind = kinds.empty() ? std::uint8_t{0}
                                        : static_cast<std::uint8_t>(kinds[entry % kinds.size()]);
        const std::size_t offset = pool.empty() ? 0 : (kind + entry) % pool.size();
        const bool isAny = kind == 0xFF;
        append(bytes, isAny ? input.number<std::uint16_t>() : static_cast<std::uint16_t>(offset));
        append(bytes, isAny ? input.number<std::uint16_t>() : kind & 3);
    }
    for (const char16_t unit : pool)
        append(bytes, unit);
    return bytes;
}

std::vector<std::byte> takeBytes(Input& input) {
    const auto bytes = std::as_bytes(std::span(input.rest()));
    return {bytes.begin(), bytes.end()};
}

/// Asks for a key with little room, and with much of it.
void checkKey(std::span<const std::byte> table, KeyCode key, std::uint32_t modifiers) {
    constexpr char16_t untouched = 0xABCD;
    std::array<char16_t, 300> wide{};
    wide.fill(untouched);
    std::array<char16_t, 4> narrow{};
    narrow.fill(untouched);
    const KeyLayoutReader reader;
    const std::ptrdiff_t length = reader.translate(table, key, modifiers, 0, wide);
    const std::span<char16_t> room(narrow.data(), 2);
    require(reader.translate(table, key, modifiers, 0, room) == length,
            "the length does not depend on the room");
    require(length >= -1 && length <= 0xFFFF, "a text has a length, or there is none");
    const std::size_t written =
        length < 0 ? 0 : std::min(static_cast<std::size_t>(length), room.size());
    require(std::equal(narrow.begin(), narrow.begin() + static_cast<std::ptrdiff_t>(written),
                       wide.begin()),
            "what does not fit is cut off");
    require(std::all_of(narrow.begin() + static_cast<std::ptrdiff_t>(written), narrow.end(),
                        [](char16_t unit) { return unit == untouched; }),
            "nothing is written beyond the text or the room");
    const std::size_t lastUnit = table.size() / unitSize;
    require(length <= 0 || headerUnits + static_cast<std::size_t>(length) <= lastUnit,
            "a text is in the table");
}

bool isVisible(std::u16string_view text) {
    for (const std::u16string_view character : plainCharacters(text))
        if (isWhitespace(character))
            return false;
    for (std::size_t offset = 0; offset < text.size();) {
        const DecodedScalar scalar = decodeScalar(text, offset);
        const bool isJoiner = scalar.value == 0x200C || scalar.value == 0x200D;
        const bool isSurrogate = scalar.value >= 0xD800 && scalar.value <= 0xDFFF;
        if (isSurrogate || (isControl(scalar.value) && !isJoiner))
            return false;
        offset += scalar.length;
    }
    return !text.empty();
}

void checkPairs(std::span<const std::byte> first, std::span<const std::byte> second,
                std::uint32_t keyboardType) {
    const KeyLayoutReader reader;
    const auto pairs = SystemKeyboardMapping::pairs(reader, first, second, keyboardType);
    require(pairs.size() <= entryCount, "no key is asked twice");
    for (const PhysicalKeyPair& pair : pairs) {
        require(isVisible(pair.first) && isVisible(pair.second),
                "keys that type no visible text are no pairs");
        require(plainNfc(pair.first) == pair.first && plainNfc(pair.second) == pair.second,
                "texts of keys are NFC");
    }
    const PhysicalLayoutMapping mapping(pairs);
    if (!pairs.empty()) {
        const std::u16string& text = pairs.front().first;
        const std::u16string there = mapping.convert(text, 0);
        require(there == text || there == pairs.front().second, "the first pair decides");
    }
}

} // namespace
} // namespace kelvora::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace kelvora::fuzz;
    Input input(data, size);
    checkNames(input.rest());
    const auto keyboardType = static_cast<std::uint32_t>(input.below(5));
    const auto key = input.number<std::uint16_t>();
    const auto modifiers = input.number<std::uint32_t>();
    const bool isAnyBytes = input.flag();
    const std::vector<std::byte> first = takeTable(input);
    const std::vector<std::byte> second = isAnyBytes ? takeBytes(input) : takeTable(input);
    for (const std::vector<std::byte>& table : {first, second}) {
        checkKey(table, key, modifiers);
        checkKey(table, key % 100, modifiers % 16);
        for (std::uint16_t each = 0; each <= 50; ++each)
            checkKey(table, each, modifiers & 0xE);
    }
    checkPairs(first, second, keyboardType);
    return 0;
}
