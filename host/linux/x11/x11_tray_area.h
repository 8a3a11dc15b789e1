// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/event_loop.h"
#include "host/linux/x11/x11_connection.h"
#include "host/tray_area.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace kelvora {

/// The tray of the System Tray Protocol on the default screen: the owner of its selection.
class X11TrayArea final : public TrayArea {
public:
    /// `display` as in DISPLAY. A server that cannot be reached has no tray.
    X11TrayArea(const std::string& display, EventLoop& loop);

    [[nodiscard]] bool isThere() const override;
    void setOnAppeared(std::function<void()> handler) override;

private:
    void processEvents();

    EventLoop& loop_;
    int screen_ = 0;
    XcbConnectionPtr connection_;
    xcb_atom_t traySelection_ = XCB_ATOM_NONE;
    xcb_atom_t manager_ = XCB_ATOM_NONE;
    std::function<void()> onAppeared_;
    std::unique_ptr<DescriptorWatch> watch_;
};

} // namespace kelvora
