// SPDX-License-Identifier: MIT
#include "app/io/hotkey_monitor.h"
#include "tests/host/x11/x11_rig.h"

#include <gtest/gtest.h>

#include <memory>
#include <utility>

namespace kelvora {
namespace {

/// A server that has no RECORD, as far as the monitor can tell.
class NoTaps final : public EventSource {
public:
    explicit NoTaps(EventSource& source) : source_(source) {}
    std::unique_ptr<EventTap> createTap(EventMask, EventHandler) override { return nullptr; }
    std::unique_ptr<EventMonitor> addGlobalMonitor(EventMask mask, EventHandler handler) override {
        return source_.addGlobalMonitor(mask, std::move(handler));
    }
    std::unique_ptr<EventMonitor> addLocalMonitor(EventMask mask, EventHandler handler) override {
        return source_.addLocalMonitor(mask, std::move(handler));
    }

private:
    EventSource& source_;
};

TEST(X11RawMonitor, FindsTheDoubleTapAndRecordsNoText) {
    X11Rig rig;
    const Desktop services = rig.services();
    NoTaps source(services.eventSource);
    HotkeyMonitor monitor(source, services.dispatch, services.log);
    int triggers = 0;
    monitor.onTrigger = [&] { ++triggers; };
    monitor.start();
    EXPECT_FALSE(monitor.eventTap());
    ASSERT_TRUE(monitor.globalMonitor());

    rig.strike(contract::keyQ);
    rig.strike(keyCode::leftShift);
    rig.strike(keyCode::leftShift);
    EXPECT_TRUE(rig.becomes([&] { return triggers == 1; }));
    EXPECT_TRUE(monitor.typedText()->text().empty());
    rig.strike(keyCode::leftShift);
    rig.strike(contract::keyQ);
    rig.strike(keyCode::leftShift);
    // Another Shift between the two is no tap either.
    rig.press(keyCode::leftShift);
    rig.strike(keyCode::rightShift);
    rig.release(keyCode::leftShift);
    rig.rest();
    EXPECT_EQ(triggers, 1);
    monitor.stop();
    rig.strike(keyCode::leftShift);
    rig.strike(keyCode::leftShift);
    rig.rest();
    EXPECT_EQ(triggers, 1);
}

} // namespace
} // namespace kelvora
