// SPDX-License-Identifier: MIT
#include "tests/host/x11/x11_rig.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace kelvora {
namespace {

using namespace contract;

class X11KeyboardGrab : public testing::Test {
protected:
    void listen() {
        tap = rig.services().eventSource.createTap(
            eventMaskBit(EventType::keyDown),
            [this](const InputEvent& event) { recorded += event.text.view(); });
        ASSERT_TRUE(tap);
        tap->setEnabled(true);
        rig.services().workspace.setOnFocusChanged([this] { ++changes; });
    }

    X11Rig rig;
    std::u16string recorded;
    int changes = 0;
    std::unique_ptr<EventTap> tap;
};

TEST_F(X11KeyboardGrab, WhatIsTypedIntoAnotherClientsGrabIsNobodysText) {
    listen();
    rig.other().grabKeyboard();
    rig.strike(keyQ);
    EXPECT_TRUE(rig.becomes([&] { return rig.otherText() == u"q"; }));
    EXPECT_TRUE(rig.becomes([&] { return changes == 1; }));
    rig.other().ungrabKeyboard();
    rig.strike(keyW);
    EXPECT_TRUE(rig.becomes([&] { return recorded == u"w"; }));
    EXPECT_EQ(changes, 2);
}

TEST_F(X11KeyboardGrab, OneThatBeganBeforeWeListenedCounts) {
    rig.other().grabKeyboard();
    listen();
    rig.strike(keyQ);
    EXPECT_TRUE(rig.becomes([&] { return rig.otherText() == u"q"; }));
    rig.other().ungrabKeyboard();
    rig.strike(keyW);
    EXPECT_TRUE(rig.becomes([&] { return recorded == u"w"; }));
}

TEST_F(X11KeyboardGrab, TheFocusedApplicationsOwnDoesNotCount) {
    listen();
    rig.editor().grabKeyboard();
    rig.strike(keyQ);
    EXPECT_TRUE(rig.becomes([&] { return recorded == u"q"; })) << "it still reads its keys itself";
    const FocusTarget target = rig.services().workspace.focusTarget();
    rig.onWorker([&] {
        const auto hold = rig.services().eventPoster.holdKeyboard(target);
        auto event = rig.services().eventPoster.createKeyEvent(0, KeyDirection::down);
        event->text = EventText(u"w");
        rig.services().eventPoster.post(*event);
        EXPECT_FALSE(hold->hasFailed());
    });
    EXPECT_TRUE(rig.textBecomes(u"qw"));
    rig.editor().ungrabKeyboard();
    rig.other().grabKeyboard();
    rig.strike(keyQ);
    EXPECT_TRUE(rig.becomes([&] { return rig.otherText() == u"q"; }));
    rig.rest();
    EXPECT_EQ(recorded, u"qw") << "the next grab is judged anew";
}

} // namespace
} // namespace kelvora
