// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_property.h"

#include "host/linux/x11/x11_connection.h"

#include <cstring>

namespace kelvora {

namespace {

XcbPtr<xcb_get_property_reply_t> fetch(xcb_connection_t* connection, xcb_window_t window,
                                       xcb_atom_t property, xcb_atom_t type,
                                       std::uint32_t maximumUnits) {
    // An atom that could not be interned; asking for it would be an error.
    if (property == XCB_ATOM_NONE)
        return nullptr;
    return XcbPtr<xcb_get_property_reply_t>(xcb_get_property_reply(
        connection, xcb_get_property(connection, 0, window, property, type, 0, maximumUnits),
        nullptr));
}

} // namespace

void internAtoms(xcb_connection_t* connection, std::initializer_list<X11AtomRequest> requests) {
    std::vector<xcb_intern_atom_cookie_t> cookies;
    for (const X11AtomRequest& request : requests)
        cookies.push_back(xcb_intern_atom(
            connection, 0, static_cast<std::uint16_t>(request.name.size()), request.name.data()));
    auto cookie = cookies.begin();
    for (const X11AtomRequest& request : requests) {
        const XcbPtr<xcb_intern_atom_reply_t> reply(
            xcb_intern_atom_reply(connection, *cookie++, nullptr));
        if (reply)
            *request.atom = reply->atom;
    }
}

std::optional<std::string> readTextProperty(xcb_connection_t* connection, xcb_window_t window,
                                            xcb_atom_t property, std::uint32_t maximumBytes) {
    const auto reply =
        fetch(connection, window, property, XCB_GET_PROPERTY_TYPE_ANY, maximumBytes / 4 + 1);
    if (!reply || reply->format != 8 || reply->bytes_after != 0)
        return std::nullopt;
    const auto length = static_cast<std::uint32_t>(xcb_get_property_value_length(reply.get()));
    if (length > maximumBytes)
        return std::nullopt;
    return std::string(static_cast<const char*>(xcb_get_property_value(reply.get())), length);
}

std::optional<std::vector<std::uint32_t>> readListProperty(xcb_connection_t* connection,
                                                           xcb_window_t window, xcb_atom_t property,
                                                           xcb_atom_t type,
                                                           std::uint32_t maximumItems) {
    const auto reply = fetch(connection, window, property, type, maximumItems);
    if (!reply || reply->format != 32 || reply->type != type)
        return std::nullopt;
    const auto length = static_cast<std::size_t>(xcb_get_property_value_length(reply.get()));
    std::vector<std::uint32_t> items(length / sizeof(std::uint32_t));
    if (!items.empty())
        std::memcpy(items.data(), xcb_get_property_value(reply.get()),
                    items.size() * sizeof(std::uint32_t));
    return items;
}

} // namespace kelvora
