// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/x11/x11_connection.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kelvora {

/// Names that the selection protocol (ICCCM, chapter 2) and its users fix.
struct ClipboardAtoms {
    xcb_atom_t clipboard = XCB_ATOM_NONE;
    xcb_atom_t clipboardManager = XCB_ATOM_NONE;
    xcb_atom_t targets = XCB_ATOM_NONE;
    xcb_atom_t timestamp = XCB_ATOM_NONE;
    xcb_atom_t multiple = XCB_ATOM_NONE;
    xcb_atom_t saveTargets = XCB_ATOM_NONE;
    xcb_atom_t incr = XCB_ATOM_NONE;
    xcb_atom_t null = XCB_ATOM_NONE;
    /// Property of our own windows in which data arrives.
    xcb_atom_t transfer = XCB_ATOM_NONE;
    /// Property of our own windows that is only written to learn the time.
    xcb_atom_t clock = XCB_ATOM_NONE;
};

/// Atoms for names of any bytes, in their order; XCB_ATOM_NONE where the server gave none.
[[nodiscard]] std::vector<xcb_atom_t> internAtoms(xcb_connection_t* connection,
                                                  std::span<const std::string_view> names);
/// The names of atoms, in their order; empty where there is no such atom.
[[nodiscard]] std::vector<std::string> atomNames(xcb_connection_t* connection,
                                                 std::span<const xcb_atom_t> atoms);

/// A connection of its own that takes part in the exchange of the CLIPBOARD selection. One thread
/// at a time.
class ClipboardClient {
public:
    using Clock = std::chrono::steady_clock;
    using EventHandler = std::function<void(const xcb_generic_event_t&)>;

    /// A change of the owner. `isClaim`: a program asked for it; otherwise the owner is gone.
    struct OwnerNotice {
        xcb_window_t owner;
        bool isClaim;
    };

    /// `display` as in DISPLAY. Null when there is no such server or it has no XFIXES.
    [[nodiscard]] static std::unique_ptr<ClipboardClient> create(const char* display);

    [[nodiscard]] xcb_connection_t* connection() const { return connection_.get(); }
    [[nodiscard]] const ClipboardAtoms& atoms() const { return atoms_; }
    /// False once the server is gone; everything asked of it fails at once from then on.
    [[nodiscard]] bool isConnected() const {
        return xcb_connection_has_error(connection_.get()) == 0;
    }

    /// The window that stands for this client.
    [[nodiscard]] xcb_window_t window() const { return window_; }
    /// One more window, whose property changes are told.
    [[nodiscard]] xcb_window_t createWindow();
    /// What all windows of one client have in common; 0 for the server's own.
    [[nodiscard]] std::uint32_t clientOf(xcb_window_t window) const;

    /// From here on every change of the owner is told, see ownerNotice(). What is not read piles
    /// up.
    void watchOwner();
    void unwatchOwner();

    [[nodiscard]] xcb_window_t selectionOwner(xcb_atom_t selection);
    /// The server's clock, in milliseconds; events that come meanwhile go to `onEvent`. Absent when
    /// the server is gone.
    [[nodiscard]] std::optional<xcb_timestamp_t> serverTime(const EventHandler& onEvent);
    /// Hands over every event that the server has sent by now: after this call nothing that
    /// happened there before it is unknown.
    void synchronize(const EventHandler& onEvent);
    /// Sends what is to be sent and waits for an event; null at the deadline or without a server.
    [[nodiscard]] XcbPtr<xcb_generic_event_t> nextEvent(Clock::time_point deadline);
    [[nodiscard]] std::optional<OwnerNotice> ownerNotice(const xcb_generic_event_t& event) const;

private:
    ClipboardClient(XcbConnectionPtr connection, std::uint8_t firstXFixesEvent);
    void internFixedAtoms();
    void selectOwnerNotices(std::uint32_t mask);

    XcbConnectionPtr connection_;
    std::uint8_t firstXFixesEvent_;
    ClipboardAtoms atoms_;
    xcb_window_t window_ = XCB_WINDOW_NONE;
};

} // namespace kelvora
