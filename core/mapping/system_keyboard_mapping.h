// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "core/mapping/physical_key_pair.h"
#include "core/mapping/physical_layout_mapping.h"
#include "host/key_translator.h"

namespace kelvora {

/// Pairs two layouts by asking the desktop what every key of the main block types in each. The data
/// are InputSource::keyLayoutData, borrowed for the call; `keyboardType` is
/// InputSources::keyboardType. Any thread.
class SystemKeyboardMapping {
public:
    SystemKeyboardMapping() = delete;

    /// In the order in which PhysicalLayoutMapping wants them: all keys without modifiers, then all
    /// with Shift, then the other combinations. Empty when either layout has no usable data.
    [[nodiscard]] static std::vector<PhysicalKeyPair> pairs(const KeyTranslator& translator,
                                                            std::span<const std::byte> firstData,
                                                            std::span<const std::byte> secondData,
                                                            std::uint32_t keyboardType);

    [[nodiscard]] static PhysicalLayoutMapping mapping(const KeyTranslator& translator,
                                                       std::span<const std::byte> firstData,
                                                       std::span<const std::byte> secondData,
                                                       std::uint32_t keyboardType);

    /// What one key types, well-formed. Absent when it types nothing, more than 255 UTF-16 units,
    /// or anything that is no visible text: white space, a control or format character other than
    /// the two joiners, a function-key code (U+F700 to U+F8FF). `modifierState` is of
    /// translationModifier.
    [[nodiscard]] static std::optional<std::u16string>
    output(const KeyTranslator& translator, std::span<const std::byte> layoutData, KeyCode keyCode,
           std::uint32_t modifierState, std::uint32_t keyboardType);
};

} // namespace kelvora
