// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_display_events.h"
#include "tests/host/desktop/private_bus.h"
#include "tests/support/real_desktop/x_server.h"

#include <gtest/gtest.h>

namespace kelvora {
namespace {

TEST(X11DisplayEvents, EndOfBlankingIsAWake) {
    real::XServer server;
    PollLoop loop;
    X11DisplayEvents events(connectX11(server.display().c_str()), loop);
    int wakes = 0;
    events.setOnDisplayWake([&] { ++wakes; });
    const XcbConnectionPtr user = connectX11(server.display().c_str());
    xcb_force_screen_saver(user.get(), XCB_SCREEN_SAVER_ACTIVE);
    xcb_flush(user.get());
    loop.turn(std::chrono::seconds(10));
    EXPECT_EQ(wakes, 0) << "blank is no wake";
    xcb_force_screen_saver(user.get(), XCB_SCREEN_SAVER_RESET);
    xcb_flush(user.get());
    EXPECT_TRUE(turnUntil(loop, [&] { return wakes == 1; }));
}

} // namespace
} // namespace kelvora
