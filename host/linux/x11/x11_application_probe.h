// SPDX-License-Identifier: MIT
#pragma once

#include "host/application_probe.h"
#include "host/linux/x11/x11_connection.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace kelvora {

/// Tells by the state of the process, and by the ping that window managers use (_NET_WM_PING of the
/// Extended Window Manager Hints), which nearly all toolkits answer from their main loop. A
/// connection of its own.
class X11ApplicationProbe final : public ApplicationProbe {
public:
    /// `display` as in DISPLAY; null: the environment's. Null when there is no such server.
    [[nodiscard]] static std::unique_ptr<X11ApplicationProbe> create(const char* display);

    [[nodiscard]] bool isResponding(FocusTarget target, double timeout) override;
    /// A program that has its copies made by another process counts as not owning them.
    [[nodiscard]] std::optional<bool> ownsPasteboard(FocusTarget target) override;

private:
    using Deadline = std::chrono::steady_clock::time_point;

    explicit X11ApplicationProbe(XcbConnectionPtr connection);

    [[nodiscard]] xcb_window_t clientWindow(xcb_window_t target);
    [[nodiscard]] xcb_window_t clientAround(xcb_window_t focus, xcb_window_t target);
    [[nodiscard]] xcb_window_t clientInside(xcb_window_t target);
    [[nodiscard]] bool isClient(xcb_window_t window);
    [[nodiscard]] bool answersPings(xcb_window_t window);
    [[nodiscard]] bool isAnswered(xcb_window_t window, Deadline deadline);
    [[nodiscard]] std::optional<xcb_timestamp_t> serverTime(Deadline deadline);
    [[nodiscard]] bool awaitEvent(Deadline deadline,
                                  const std::function<bool(const xcb_generic_event_t&)>& isAwaited);

    XcbConnectionPtr connection_;
    xcb_window_t root_ = XCB_NONE;
    xcb_window_t ownWindow_ = XCB_NONE; ///< never shown; its property notices tell the time
    xcb_timestamp_t lastTime_ = XCB_CURRENT_TIME;
    struct Atoms {
        xcb_atom_t protocols = XCB_ATOM_NONE;
        xcb_atom_t ping = XCB_ATOM_NONE;
        xcb_atom_t state = XCB_ATOM_NONE;
        xcb_atom_t processIdentifier = XCB_ATOM_NONE;
        xcb_atom_t clipboard = XCB_ATOM_NONE;
    } atoms_;
};

} // namespace kelvora
