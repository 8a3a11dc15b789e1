// SPDX-License-Identifier: MIT
#pragma once

#include "host/pasteboard.h"

#include <xcb/xcb.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kelvora {

/// Targets that give plain text, the preferred first.
inline constexpr std::string_view textTargets[] = {"UTF8_STRING", "text/plain;charset=utf-8",
                                                   "STRING"};

/// Whether a target of that name gives plain text.
[[nodiscard]] bool isText(std::string_view target);

/// What is given out for one target, as a property of that type and format.
struct ClipboardTarget {
    xcb_atom_t target;
    xcb_atom_t type;
    std::uint8_t format; ///< 8, 16 or 32: the unit's bits
    PasteboardData data; ///< where it came from, with the bytes
};

/// What a claim of the selection gives out. Shared by everything that is on its way to requestors,
/// never changed.
struct ClipboardContents {
    std::vector<ClipboardTarget> targets;
    /// Marked as nothing that a clipboard manager should keep.
    bool isSecret = false;
    /// Given out instead to programs that fetch what nobody pastes; null: they get the same.
    std::shared_ptr<const ClipboardContents> forWatchers;
    /// The text of contents that have none for other programs.
    std::optional<std::u16string> marker;
};

/// A property's type and format as a PasteboardData keeps them.
[[nodiscard]] std::string propertyEncoding(std::uint8_t format, std::string_view type);

/// Contents that are exactly `data`; what the server has no names for is left out.
[[nodiscard]] ClipboardContents contentsOf(xcb_connection_t* connection,
                                           std::vector<PasteboardData> data);

/// Nothing that anybody would take, yet not nothing: many a manager fills a clipboard that is empty
/// with what was there before. With the mark that keeps it out of histories.
[[nodiscard]] std::vector<PasteboardData> markerData();

/// A text as what programs exchange texts in, with the mark that keeps it out of histories.
[[nodiscard]] std::vector<PasteboardData> secretText(std::u16string_view text);

/// The text of a property of format 8: Latin-1 when its type is STRING, else UTF-8. Without the NUL
/// that some owners send along.
[[nodiscard]] std::u16string textOf(std::span<const std::byte> bytes, bool isLatin1);

/// The text among `contents`, or their marker; absent when there is neither.
[[nodiscard]] std::optional<std::u16string> textOf(const ClipboardContents& contents);

} // namespace kelvora
