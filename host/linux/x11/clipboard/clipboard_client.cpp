// SPDX-License-Identifier: MIT
#include "host/linux/x11/clipboard/clipboard_client.h"

#include <poll.h>
#include <xcb/xfixes.h>

#include <algorithm>
#include <array>

namespace kelvora {

std::vector<xcb_atom_t> internAtoms(xcb_connection_t* connection,
                                    std::span<const std::string_view> names) {
    std::vector<xcb_intern_atom_cookie_t> cookies;
    cookies.reserve(names.size());
    for (const std::string_view name : names)
        cookies.push_back(xcb_intern_atom(
            connection, 0, static_cast<std::uint16_t>(std::min<std::size_t>(name.size(), 0xFFFF)),
            name.data()));
    std::vector<xcb_atom_t> atoms;
    atoms.reserve(names.size());
    for (const xcb_intern_atom_cookie_t cookie : cookies) {
        const XcbPtr<xcb_intern_atom_reply_t> reply(
            xcb_intern_atom_reply(connection, cookie, nullptr));
        atoms.push_back(reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE});
    }
    return atoms;
}

std::vector<std::string> atomNames(xcb_connection_t* connection,
                                   std::span<const xcb_atom_t> atoms) {
    std::vector<xcb_get_atom_name_cookie_t> cookies;
    cookies.reserve(atoms.size());
    for (const xcb_atom_t atom : atoms)
        cookies.push_back(xcb_get_atom_name(connection, atom));
    std::vector<std::string> names;
    names.reserve(atoms.size());
    for (const xcb_get_atom_name_cookie_t cookie : cookies) {
        const XcbPtr<xcb_get_atom_name_reply_t> reply(
            xcb_get_atom_name_reply(connection, cookie, nullptr));
        if (reply)
            names.emplace_back(
                xcb_get_atom_name_name(reply.get()),
                static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get())));
        else
            names.emplace_back();
    }
    return names;
}

std::unique_ptr<ClipboardClient> ClipboardClient::create(const char* display) {
    XcbConnectionPtr connection = connectX11(display);
    if (!connection)
        return nullptr;
    const auto* xfixes = xcb_get_extension_data(connection.get(), &xcb_xfixes_id);
    if (xfixes == nullptr || xfixes->present == 0)
        return nullptr;
    // The server refuses every other request of the extension before this one.
    const XcbPtr<xcb_xfixes_query_version_reply_t> version(xcb_xfixes_query_version_reply(
        connection.get(), xcb_xfixes_query_version(connection.get(), 1, 0), nullptr));
    if (!version)
        return nullptr;
    std::unique_ptr<ClipboardClient> client(
        new ClipboardClient(std::move(connection), xfixes->first_event));
    client->internFixedAtoms();
    client->window_ = client->createWindow();
    client->synchronize([](const xcb_generic_event_t&) {});
    if (!client->isConnected())
        return nullptr;
    return client;
}

ClipboardClient::ClipboardClient(XcbConnectionPtr connection, std::uint8_t firstXFixesEvent)
    : connection_(std::move(connection)), firstXFixesEvent_(firstXFixesEvent) {}

void ClipboardClient::internFixedAtoms() {
    constexpr std::array<std::string_view, 10> names{
        "CLIPBOARD",          "CLIPBOARD_MANAGER", "TARGETS", "TIMESTAMP",
        "MULTIPLE",           "SAVE_TARGETS",      "INCR",    "NULL",
        "_KELVORA_CLIPBOARD", "_KELVORA_CLOCK"};
    const std::vector<xcb_atom_t> atoms = internAtoms(connection(), names);
    atoms_ = {.clipboard = atoms[0],
              .clipboardManager = atoms[1],
              .targets = atoms[2],
              .timestamp = atoms[3],
              .multiple = atoms[4],
              .saveTargets = atoms[5],
              .incr = atoms[6],
              .null = atoms[7],
              .transfer = atoms[8],
              .clock = atoms[9]};
}

xcb_window_t ClipboardClient::createWindow() {
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection())).data->root;
    const xcb_window_t window = xcb_generate_id(connection());
    const std::uint32_t eventMask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(connection(), 0, window, root, -10, -10, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &eventMask);
    return window;
}

std::uint32_t ClipboardClient::clientOf(xcb_window_t window) const {
    // The server hands each client the identifiers with the same bits above this mask.
    return window & ~xcb_get_setup(connection())->resource_id_mask;
}

void ClipboardClient::watchOwner() {
    selectOwnerNotices(XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                       XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                       XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
}

void ClipboardClient::unwatchOwner() {
    selectOwnerNotices(0);
    xcb_flush(connection());
}

void ClipboardClient::selectOwnerNotices(std::uint32_t mask) {
    xcb_xfixes_select_selection_input(connection(), window_, atoms_.clipboard, mask);
}

xcb_window_t ClipboardClient::selectionOwner(xcb_atom_t selection) {
    const XcbPtr<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
        connection(), xcb_get_selection_owner(connection(), selection), nullptr));
    return reply ? reply->owner : xcb_window_t{XCB_WINDOW_NONE};
}

std::optional<xcb_timestamp_t> ClipboardClient::serverTime(const EventHandler& onEvent) {
    xcb_change_property(connection(), XCB_PROP_MODE_APPEND, window_, atoms_.clock, XCB_ATOM_STRING,
                        8, 0, nullptr);
    xcb_flush(connection());
    while (const XcbPtr<xcb_generic_event_t> event{xcb_wait_for_event(connection())}) {
        const auto* property = reinterpret_cast<const xcb_property_notify_event_t*>(event.get());
        if ((event->response_type & 0x7F) == XCB_PROPERTY_NOTIFY && property->window == window_ &&
            property->atom == atoms_.clock)
            return property->time;
        onEvent(*event);
    }
    return std::nullopt;
}

void ClipboardClient::synchronize(const EventHandler& onEvent) {
    static_cast<void>(selectionOwner(atoms_.clipboard));
    while (const XcbPtr<xcb_generic_event_t> event{xcb_poll_for_event(connection())})
        onEvent(*event);
}

XcbPtr<xcb_generic_event_t> ClipboardClient::nextEvent(Clock::time_point deadline) {
    xcb_flush(connection());
    while (true) {
        XcbPtr<xcb_generic_event_t> event(xcb_poll_for_event(connection()));
        if (event || !isConnected())
            return event;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        if (left.count() <= 0)
            return nullptr;
        pollfd readable{xcb_get_file_descriptor(connection()), POLLIN, 0};
        poll(&readable, 1, static_cast<int>(left.count()));
    }
}

std::optional<ClipboardClient::OwnerNotice>
ClipboardClient::ownerNotice(const xcb_generic_event_t& event) const {
    if ((event.response_type & 0x7F) != firstXFixesEvent_ + XCB_XFIXES_SELECTION_NOTIFY)
        return std::nullopt;
    const auto& notice = reinterpret_cast<const xcb_xfixes_selection_notify_event_t&>(event);
    if (notice.selection != atoms_.clipboard)
        return std::nullopt;
    return OwnerNotice{notice.owner,
                       notice.subtype == XCB_XFIXES_SELECTION_EVENT_SET_SELECTION_OWNER};
}

} // namespace kelvora
