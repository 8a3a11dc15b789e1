// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace kelvora {

/// What one physical key, with one modifier combination, types in each of the two layouts.
struct PhysicalKeyPair {
    /// Both texts are stored in NFC; either may be empty. `primary` is true for a key pressed
    /// without modifiers or with Shift alone: those pairs tell which letters mark a layout.
    PhysicalKeyPair(std::u16string_view firstText, std::u16string_view secondText,
                    bool primary = true);

    std::u16string first;
    std::u16string second;
    bool isPrimary;

    bool operator==(const PhysicalKeyPair&) const = default;
};

} // namespace kelvora
