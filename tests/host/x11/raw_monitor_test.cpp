// SPDX-License-Identifier: MIT
#include "tests/host/x11/x11_rig.h"

#include <string>

namespace kelvora {
namespace {

// What finds the double tap where the server has no RECORD.
TEST(X11RawMonitor, TellsEveryKeyInItsOrder) {
    X11Rig rig;
    std::string told;
    auto monitor = rig.services().eventSource.addGlobalMonitor(
        eventMaskBit(EventType::keyDown) | eventMaskBit(EventType::flagsChanged),
        [&](const InputEvent& event) {
            told += std::to_string(event.keyCode) +
                    ((event.flags & eventFlag::shift) != 0 ? "S " : " ");
        });
    ASSERT_TRUE(monitor);
    rig.strike(keyCode::leftShift);
    rig.strike(contract::keyQ);
    rig.press(keyCode::leftShift);
    rig.strike(keyCode::rightShift);
    rig.release(keyCode::leftShift);
    rig.release(keyCode::leftShift); // tools do, to be sure; it is no tap
    EXPECT_TRUE(rig.becomes([&] { return told == "56S 56 12 56S 60S 60S 56 "; })) << told;
    monitor.reset();
    rig.strike(contract::keyQ);
    rig.rest();
    EXPECT_EQ(told, "56S 56 12 56S 60S 60S 56 ");
}

} // namespace
} // namespace kelvora
