// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kelvora {

/// The bytes that an item gives for one type.
struct PasteboardData {
    std::string type;     ///< the desktop's own name for it, UTF-8
    std::string encoding; ///< what the desktop needs to give the bytes out as they came; opaque
    std::shared_ptr<const std::vector<std::byte>> bytes; ///< never null
};

/// A copy of one item of the pasteboard: its types in the order the owner named them.
struct PasteboardItem {
    std::vector<PasteboardData> data;
};

/// Everything that was on the pasteboard, in order. Stays valid whatever happens there.
using PasteboardSnapshot = std::vector<PasteboardItem>;

namespace pasteboardType {
/// Plain text, whatever encodings of it the desktop's programs exchange.
inline constexpr std::string_view string = "public.utf8-plain-text";
} // namespace pasteboardType

/// The session's general pasteboard (the clipboard). Any thread but the main one; one thread at a
/// time. Other programs' requests for what is written here are answered beside the caller's thread.
class Pasteboard {
public:
    virtual ~Pasteboard() = default;

    /// Grows by one with each clearContents() and each time another program takes the pasteboard,
    /// in time for whoever asks. A clipboard manager that takes it over with exactly what was
    /// written here changes nothing.
    [[nodiscard]] virtual std::int64_t changeCount() = 0;

    /// The text of that type; absent when there is none or its owner does not give it in time.
    [[nodiscard]] virtual std::optional<std::u16string> string(std::string_view type) = 0;

    /// Adds a text to what was cleared before. It is there for a moment only, for the program that
    /// has the keyboard: it bears the mark that keeps it out of histories, and as most clipboard
    /// managers ignore that, programs that were seen to fetch what nobody pastes do not get it.
    /// False when the pasteboard is not ours.
    virtual bool setString(std::u16string_view text, std::string_view type) = 0;

    /// The same with a text that string() gives back here and no other program gets: to them there
    /// is something, but no text.
    virtual bool setMarker(std::u16string_view text) = 0;

    /// Empties the pasteboard and takes it over; the new change count.
    virtual std::int64_t clearContents() = 0;

    /// A copy of everything on the pasteboard; empty when it has nothing. Types that their owner
    /// refuses are left out. Absent when the owner does not answer, or when time or memory for the
    /// copy ran out: what is there would be lost if it were written to.
    [[nodiscard]] virtual std::optional<PasteboardSnapshot> snapshot() = 0;

    /// Clears the pasteboard and writes the items, which may be none.
    virtual void restore(PasteboardSnapshot items) = 0;
};

} // namespace kelvora
