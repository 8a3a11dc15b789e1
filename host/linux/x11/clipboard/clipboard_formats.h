// SPDX-License-Identifier: MIT
#pragma once

#include "host/pasteboard.h"

#include <xcb/xcb.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kelvora {

// What the names, types and bytes mean that programs exchange through a selection. No server is
// asked, and any bytes are safe. Any thread.

/// Targets that give plain text, the preferred first.
inline constexpr std::string_view textTargets[] = {"UTF8_STRING", "text/plain;charset=utf-8",
                                                   "STRING"};

/// Whether a target of that name gives plain text.
[[nodiscard]] bool isText(std::string_view target);

/// Whether asking for a target of that name gives nothing that could be put back later: it says
/// something about the selection, does something to it, or names what only its owner keeps.
[[nodiscard]] bool isNeverAskedFor(std::string_view target);

/// The atoms of a property of format 32, each once, in their order.
[[nodiscard]] std::vector<xcb_atom_t> atomsIn(std::span<const std::byte> bytes);

/// The text of a property of format 8: Latin-1 when its type is STRING, else UTF-8. Without the NUL
/// that some owners send along.
[[nodiscard]] std::u16string textOf(std::span<const std::byte> bytes, bool isLatin1);

/// A property's type and format as a PasteboardData keeps them.
[[nodiscard]] std::string propertyEncoding(std::uint8_t format, std::string_view type);

struct PropertyKind {
    std::uint8_t format = 8; ///< 8, 16 or 32: the unit's bits
    std::string_view type;   ///< the name of its type, in the data's memory
    friend bool operator==(const PropertyKind&, const PropertyKind&) = default;
};

/// The property that `data` is given out as. The bytes are whole units of its format.
[[nodiscard]] PropertyKind propertyKind(const PasteboardData& data);

} // namespace kelvora
