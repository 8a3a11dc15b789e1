// SPDX-License-Identifier: MIT
#include "host/linux/x11/clipboard/clipboard_formats.h"

#include "core/text/encoding.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace kelvora {

bool isText(std::string_view target) {
    return target == "UTF8_STRING" || target == "STRING" || target == "TEXT" ||
           target == "COMPOUND_TEXT" || target.starts_with("text/plain");
}

bool isNeverAskedFor(std::string_view target) {
    static constexpr auto names = std::to_array<std::string_view>(
        {// They say something about the selection, or do something to it.
         "TARGETS", "MULTIPLE", "TIMESTAMP", "SAVE_TARGETS", "DELETE", "INSERT_SELECTION",
         "INSERT_PROPERTY",
         // Names of things in the server or in the owner, which may be gone when they are used.
         "DRAWABLE", "PIXMAP", "BITMAP", "COLORMAP", "FOREGROUND", "BACKGROUND", "WINDOW",
         "CLIENT_WINDOW", "CURSOR", "FONT", "GTK_TEXT_BUFFER_CONTENTS"});
    return target.empty() || std::ranges::find(names, target) != names.end();
}

std::vector<xcb_atom_t> atomsIn(std::span<const std::byte> bytes) {
    std::vector<xcb_atom_t> atoms;
    for (; bytes.size() >= sizeof(xcb_atom_t); bytes = bytes.subspan(sizeof(xcb_atom_t))) {
        xcb_atom_t atom = XCB_ATOM_NONE;
        std::memcpy(&atom, bytes.data(), sizeof atom);
        if (std::ranges::find(atoms, atom) == atoms.end())
            atoms.push_back(atom);
    }
    return atoms;
}

std::u16string textOf(std::span<const std::byte> bytes, bool isLatin1) {
    if (!bytes.empty() && bytes.back() == std::byte{0})
        bytes = bytes.first(bytes.size() - 1);
    if (!isLatin1)
        return toUtf16({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    std::u16string text;
    text.reserve(bytes.size());
    for (const std::byte byte : bytes)
        text.push_back(std::to_integer<unsigned char>(byte));
    return text;
}

std::string propertyEncoding(std::uint8_t format, std::string_view type) {
    return std::to_string(format).append(" ").append(type);
}

PropertyKind propertyKind(const PasteboardData& data) {
    const std::string_view encoding = data.encoding;
    for (const std::uint8_t format : {std::uint8_t{8}, std::uint8_t{16}, std::uint8_t{32}}) {
        const std::string prefix = propertyEncoding(format, {});
        if (encoding.starts_with(prefix) && data.bytes->size() % (format / 8) == 0)
            return {format, encoding.substr(prefix.size())};
    }
    return {8, data.type};
}

} // namespace kelvora
