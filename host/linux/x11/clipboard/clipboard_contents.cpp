// SPDX-License-Identifier: MIT
#include "host/linux/x11/clipboard/clipboard_contents.h"

#include "core/text/encoding.h"
#include "host/linux/x11/clipboard/clipboard_client.h"
#include "host/linux/x11/clipboard/clipboard_formats.h"

#include <algorithm>
#include <span>
#include <utility>

namespace kelvora {
namespace {

/// A convention between password managers and clipboard managers; its value is always "secret".
constexpr std::string_view managerHint = "x-kde-passwordManagerHint";

/// Of this program alone.
constexpr std::string_view markerType = "application/x-kelvora-marker";

std::shared_ptr<const std::vector<std::byte>> toBytes(std::string_view text) {
    const auto bytes = std::as_bytes(std::span(text));
    return std::make_shared<const std::vector<std::byte>>(bytes.begin(), bytes.end());
}

PasteboardData hint() {
    return {std::string(managerHint), propertyEncoding(8, managerHint), toBytes("secret")};
}

} // namespace

ClipboardContents contentsOf(xcb_connection_t* connection, std::vector<PasteboardData> data) {
    std::vector<std::string_view> names;
    for (const PasteboardData& each : data) {
        names.push_back(each.type);
        names.push_back(propertyKind(each).type);
    }
    const std::vector<xcb_atom_t> atoms = internAtoms(connection, names);
    ClipboardContents contents;
    for (std::size_t i = 0; i < data.size(); ++i) {
        const xcb_atom_t target = atoms[2 * i];
        const xcb_atom_t type = atoms[2 * i + 1];
        if (target == XCB_ATOM_NONE || type == XCB_ATOM_NONE)
            continue;
        contents.isSecret = contents.isSecret || data[i].type == managerHint;
        const std::uint8_t format = propertyKind(data[i]).format;
        contents.targets.push_back({target, type, format, std::move(data[i])});
    }
    return contents;
}

std::vector<PasteboardData> markerData() {
    return {{std::string(markerType), propertyEncoding(8, markerType), toBytes({})}, hint()};
}

std::vector<PasteboardData> secretText(std::u16string_view text) {
    const auto utf8 = toBytes(toUtf8(text));
    std::vector<PasteboardData> data{
        {"UTF8_STRING", propertyEncoding(8, "UTF8_STRING"), utf8},
        {"text/plain;charset=utf-8", propertyEncoding(8, "text/plain;charset=utf-8"), utf8},
        {"text/plain", propertyEncoding(8, "text/plain"), utf8}};
    if (std::ranges::all_of(text, [](char16_t unit) { return unit <= 0xFF; })) {
        std::string latin1;
        for (const char16_t unit : text)
            latin1.push_back(static_cast<char>(unit));
        const auto bytes = toBytes(latin1);
        data.push_back({"STRING", propertyEncoding(8, "STRING"), bytes});
        data.push_back({"TEXT", propertyEncoding(8, "STRING"), bytes});
    } else {
        data.push_back({"TEXT", propertyEncoding(8, "UTF8_STRING"), utf8});
    }
    data.push_back(hint());
    return data;
}

std::optional<std::u16string> textOf(const ClipboardContents& contents) {
    if (contents.marker)
        return contents.marker;
    for (const std::string_view name : textTargets)
        for (const ClipboardTarget& target : contents.targets)
            if (target.data.type == name && target.format == 8)
                return textOf(*target.data.bytes, target.type == XCB_ATOM_STRING);
    return std::nullopt;
}

} // namespace kelvora
