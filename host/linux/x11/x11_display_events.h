// SPDX-License-Identifier: MIT
#pragma once

#include "host/display_events.h"
#include "host/linux/event_loop.h"
#include "host/linux/x11/x11_connection.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

namespace kelvora {

/// The end of screen blanking, as MIT-SCREEN-SAVER tells of it; silent on a server without it. Main
/// thread only.
class X11DisplayEvents final : public DisplayEvents {
public:
    /// `connection` is this object's alone.
    X11DisplayEvents(XcbConnectionPtr connection, EventLoop& loop);

    void setOnDisplayWake(std::function<void()> handler) override { onWake_ = std::move(handler); }

private:
    void processEvents();

    XcbConnectionPtr connection_;
    std::uint8_t notice_ = 0; ///< the event's number
    std::function<void()> onWake_;
    std::unique_ptr<DescriptorWatch> watch_;
};

} // namespace kelvora
