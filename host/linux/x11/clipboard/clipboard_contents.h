// SPDX-License-Identifier: MIT
#pragma once

#include "host/pasteboard.h"

#include <xcb/xcb.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kelvora {

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

/// Contents that are exactly `data`; what the server has no names for is left out.
[[nodiscard]] ClipboardContents contentsOf(xcb_connection_t* connection,
                                           std::vector<PasteboardData> data);

/// Nothing that anybody would take, yet not nothing: many a manager fills a clipboard that is empty
/// with what was there before. With the mark that keeps it out of histories.
[[nodiscard]] std::vector<PasteboardData> markerData();

/// A text as what programs exchange texts in, with the mark that keeps it out of histories.
[[nodiscard]] std::vector<PasteboardData> secretText(std::u16string_view text);

/// The text among `contents`, or their marker; absent when there is neither.
[[nodiscard]] std::optional<std::u16string> textOf(const ClipboardContents& contents);

} // namespace kelvora
