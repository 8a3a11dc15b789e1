// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "core/mapping/keyboard_mapping.h"
#include "core/mapping/physical_layout_mapping.h"

namespace kelvora {

/// The Latin and Russian rows as the keys of two layouts, with the digit row.
inline std::vector<PhysicalKeyPair> builtInPairs() {
    std::vector<PhysicalKeyPair> pairs;
    const auto addRow = [&](std::u16string_view first, std::u16string_view second) {
        for (std::size_t key = 0; key < first.size(); ++key) {
            pairs.emplace_back(first.substr(key, 1), second.substr(key, 1));
        }
    };
    addRow(KeyboardMapping::unshiftedLatin, KeyboardMapping::unshiftedRussian);
    addRow(u"1234567890", u"1234567890");
    addRow(KeyboardMapping::shiftedLatin, KeyboardMapping::shiftedRussian);
    return pairs;
}

inline PhysicalLayoutMapping builtInMapping() {
    return PhysicalLayoutMapping(builtInPairs());
}

} // namespace kelvora
