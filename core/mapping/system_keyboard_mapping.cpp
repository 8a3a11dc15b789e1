// SPDX-License-Identifier: MIT
#include "core/mapping/system_keyboard_mapping.h"

#include "core/text/character_class.h"
#include "core/text/characters.h"
#include "core/text/encoding.h"

#include <array>

namespace kelvora {
namespace {

constexpr std::ptrdiff_t maximumOutputLength = 255;
constexpr KeyCode lastMainBlockKey = 50;
constexpr std::size_t maximumKeyCount = lastMainBlockKey + 2;

struct Combination {
    std::uint32_t modifierState;
    bool isPrimary;
};

namespace modifier = translationModifier;
constexpr std::array<Combination, 8> combinations{{
    {0, true},
    {modifier::shift, true},
    {modifier::capsLock, false},
    {modifier::shift | modifier::capsLock, false},
    {modifier::option, false},
    {modifier::option | modifier::shift, false},
    {modifier::option | modifier::capsLock, false},
    {modifier::option | modifier::shift | modifier::capsLock, false},
}};

/// The keys of the main block, in the order in which they are asked.
class MainBlock {
public:
    explicit MainBlock(PhysicalLayoutType type) {
        for (KeyCode code = 0; code <= lastMainBlockKey; ++code) {
            if (code != keyCode::isoSection || type == PhysicalLayoutType::iso)
                codes_[size_++] = code;
        }
        if (type == PhysicalLayoutType::jis) {
            codes_[size_++] = keyCode::jisYen;
            codes_[size_++] = keyCode::jisUnderscore;
        }
    }

    [[nodiscard]] std::span<const KeyCode> codes() const { return {codes_.data(), size_}; }

private:
    std::array<KeyCode, maximumKeyCount> codes_{};
    std::size_t size_ = 0;
};

bool isFunctionKeyCode(char32_t scalar) {
    return scalar >= 0xF700 && scalar <= 0xF8FF;
}

bool isJoiner(char32_t scalar) {
    return scalar == 0x200C || scalar == 0x200D;
}

bool isVisibleText(std::u16string_view text) {
    // White space includes every line break.
    for (std::u16string_view character : Characters(text)) {
        if (isWhitespace(character))
            return false;
    }
    for (std::size_t offset = 0; offset < text.size();) {
        const DecodedScalar scalar = decodeScalar(text, offset);
        if (isFunctionKeyCode(scalar.value) || (isControl(scalar.value) && !isJoiner(scalar.value)))
            return false;
        offset += scalar.length;
    }
    return true;
}

} // namespace

std::optional<std::u16string> SystemKeyboardMapping::output(const KeyTranslator& translator,
                                                            std::span<const std::byte> layoutData,
                                                            KeyCode keyCode,
                                                            std::uint32_t modifierState,
                                                            std::uint32_t keyboardType) {
    std::array<char16_t, maximumOutputLength> buffer{};
    const std::ptrdiff_t length =
        translator.translate(layoutData, keyCode, modifierState, keyboardType, buffer);
    if (length < 1 || length > maximumOutputLength)
        return std::nullopt;
    std::u16string text =
        toWellFormed(std::u16string_view(buffer.data(), static_cast<std::size_t>(length)));
    if (!isVisibleText(text))
        return std::nullopt;
    return text;
}

std::vector<PhysicalKeyPair> SystemKeyboardMapping::pairs(const KeyTranslator& translator,
                                                          std::span<const std::byte> firstData,
                                                          std::span<const std::byte> secondData,
                                                          std::uint32_t keyboardType) {
    std::vector<PhysicalKeyPair> result;
    if (firstData.empty() || secondData.empty())
        return result;
    const MainBlock mainBlock(translator.layoutType(keyboardType));
    result.reserve(combinations.size() * mainBlock.codes().size());
    for (const auto& [modifierState, isPrimary] : combinations) {
        for (const KeyCode code : mainBlock.codes()) {
            const auto first = output(translator, firstData, code, modifierState, keyboardType);
            if (!first)
                continue;
            const auto second = output(translator, secondData, code, modifierState, keyboardType);
            if (!second)
                continue;
            result.emplace_back(*first, *second, isPrimary);
        }
    }
    return result;
}

PhysicalLayoutMapping SystemKeyboardMapping::mapping(const KeyTranslator& translator,
                                                     std::span<const std::byte> firstData,
                                                     std::span<const std::byte> secondData,
                                                     std::uint32_t keyboardType) {
    return PhysicalLayoutMapping(pairs(translator, firstData, secondData, keyboardType));
}

} // namespace kelvora
