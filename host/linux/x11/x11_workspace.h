// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/desktop/desktop_entries.h"
#include "host/linux/x11/x11_connection.h"
#include "host/workspace.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace kelvora {

/// The applications and the focus of an X11 session. Every answer is asked of the server at that
/// moment, over a connection of its own; a server that is gone gives absent results. Main thread
/// only.
class X11Workspace final : public Workspace {
public:
    /// `display` as in DISPLAY; null: the environment's. Null when there is no such server.
    [[nodiscard]] static std::unique_ptr<X11Workspace> create(const char* display,
                                                              DesktopEntries entries);

    /// The application of the focus window, which names itself there, on a window around it or on
    /// one inside that has the pointer; of the window manager's active window when it does not.
    [[nodiscard]] std::optional<FrontmostApplication> frontmostApplication() override;
    /// As readFocus() tells it.
    [[nodiscard]] FocusTarget focusTarget() override;
    void setOnFocusChanged(std::function<void(FocusChange)> handler) override;

    /// For the source of the key events, which learns of the focus in order with them.
    void notifyFocusChanged(FocusChange change);

private:
    struct Atoms {
        xcb_atom_t activeWindow = XCB_ATOM_NONE;
        xcb_atom_t gtkApplicationId = XCB_ATOM_NONE;
        xcb_atom_t processIdentifier = XCB_ATOM_NONE;
        xcb_atom_t windowManagerCheck = XCB_ATOM_NONE;
        xcb_atom_t windowType = XCB_ATOM_NONE;
        xcb_atom_t windowTypeDesktop = XCB_ATOM_NONE;
    };
    X11Workspace(XcbConnectionPtr connection, DesktopEntries entries);

    void discardEvents();
    [[nodiscard]] bool namesItself(xcb_window_t window);
    [[nodiscard]] xcb_window_t rootOf(xcb_window_t window);
    [[nodiscard]] xcb_window_t namedAround(xcb_window_t window);
    [[nodiscard]] xcb_window_t namedBelowPointer(xcb_window_t window);
    [[nodiscard]] FrontmostApplication describe(xcb_window_t window);

    XcbConnectionPtr connection_;
    DesktopEntries entries_;
    Atoms atoms_;
    std::function<void(FocusChange)> onFocusChanged_;
};

} // namespace kelvora
