// SPDX-License-Identifier: MIT
#pragma once

#include "host/key_translator.h"
#include "host/linux/xkb/handles.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace kelvora {

/// The codes that InputSources::keyboardType gives on Linux.
namespace keyboardTypeCode {
inline constexpr std::uint32_t unknown = 0;
inline constexpr std::uint32_t ansi = 1;
inline constexpr std::uint32_t iso = 2;
inline constexpr std::uint32_t jis = 3;
} // namespace keyboardTypeCode

/// The code for an XKB model name ("pc105", "jp106", ...); an empty name is the usual pc105.
[[nodiscard]] std::uint32_t keyboardTypeForModel(std::string_view model);

/// Writes down what every key of the main block types in `group` (0-based, below the keymap's
/// number of layouts) as a table of bytes that needs nothing else to be read. Dead keys and keys
/// that type several characters go by `composeTable`; null: without. The key code `isoSection` is
/// empty in layouts that have nothing of their own there.
[[nodiscard]] KeyLayoutData makeKeyLayoutData(xkb_keymap* keymap, xkb_layout_index_t group,
                                              xkb_compose_table* composeTable);

/// Reads the tables that makeKeyLayoutData() wrote. Any bytes are safe: what is no such table
/// gives -1. A text longer than `output` is cut off there, and its whole length returned.
class KeyLayoutReader final : public KeyTranslator {
public:
    [[nodiscard]] std::ptrdiff_t translate(std::span<const std::byte> layoutData, KeyCode keyCode,
                                           std::uint32_t modifierState, std::uint32_t keyboardType,
                                           std::span<char16_t> output) const override;
    [[nodiscard]] PhysicalLayoutType layoutType(std::uint32_t keyboardType) const override;
};

} // namespace kelvora
