// SPDX-License-Identifier: MIT
#include "app/io/system_event_poster.h"

#include "tests/support/fake_desktop/fake_desktop.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

namespace kelvora {
namespace {

class SystemEventPosterTest : public testing::Test {
protected:
    /// The posted events with their times in milliseconds since the start, e.g. "0 down 51".
    std::vector<std::string> trace() const {
        std::vector<std::string> lines;
        for (const auto& [time, direction, event] : desktop.keyboard.posted) {
            lines.push_back(std::to_string(std::lround((time - started) * 1000)) +
                            (direction == KeyDirection::down ? " down " : " up ") +
                            std::to_string(event.keyCode));
        }
        return lines;
    }

    double elapsed() const { return desktop.scheduler.now() - started; }

    fake::FakeDesktop desktop;
    SystemEventPoster poster{desktop.keyboard, [this] { return desktop.scheduler.now(); }};
    double started = desktop.scheduler.now();
};

TEST_F(SystemEventPosterTest, KeyGoesDownAndUpWithPauseAfterEach) {
    poster.sendKey(keyCode::c, eventFlag::command, 0.015);
    EXPECT_EQ(trace(), (std::vector<std::string>{"0 down 8", "15 up 8"}));
    EXPECT_NEAR(elapsed(), 0.03, 1e-9);
    for (const auto& posted : desktop.keyboard.posted) {
        EXPECT_EQ(posted.event.flags, eventFlag::command);
        EXPECT_EQ(posted.event.sourceUserData, 82761005551442);
        EXPECT_TRUE(posted.event.text.empty());
    }
}

TEST_F(SystemEventPosterTest, FailedEventIsSkippedWithItsPause) {
    desktop.keyboard.refuses = [](KeyCode, KeyDirection direction) {
        return direction == KeyDirection::down;
    };
    poster.sendKey(keyCode::backspace, 0, 0.008);
    EXPECT_EQ(trace(), (std::vector<std::string>{"0 up 51"}));
    EXPECT_NEAR(elapsed(), 0.008, 1e-9);

    desktop.keyboard.posted.clear();
    int asked = 0;
    desktop.keyboard.refuses = [&](KeyCode, KeyDirection) { return ++asked == 1; };
    started = desktop.scheduler.now();
    poster.typeText(std::u16string(21, u'a'));
    EXPECT_EQ(trace(), (std::vector<std::string>{"0 up 0", "10 down 0", "20 up 0"}));
}

TEST_F(SystemEventPosterTest, TextIsCutIntoChunks) {
    struct Case {
        const char* name;
        std::u16string text;
        std::vector<std::size_t> chunks; // UTF-16 units of each
    };
    const std::u16string n19(19, u'n');
    const std::u16string n20(20, u'n');
    const Case cases[] = {
        {"a full chunk", n20, {20}},
        {"one more", n20 + u"x", {20, 1}},
        {"pair across the end of a chunk", n19 + u"😀", {19, 2}},
        {"pair at the very end of a chunk", n19.substr(1) + u"😀", {20}},
        {"pair ends a chunk that is not the last", n19.substr(1) + u"😀x", {20, 1}},
        {"lone high surrogate, last", n19 + u'\xD83D', {20}},
        {"lone high surrogate, more behind", n19 + u'\xD83D' + u"x", {19, 2}},
    };
    for (const Case& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        desktop.keyboard.posted.clear();
        started = desktop.scheduler.now();
        poster.typeText(testCase.text);

        std::u16string carried;
        std::vector<std::size_t> chunks;
        for (const auto& [time, direction, event] : desktop.keyboard.posted) {
            EXPECT_EQ(event.keyCode, 0);
            EXPECT_EQ(event.sourceUserData, SystemEventPoster::userData);
            if (direction == KeyDirection::down) {
                carried += event.text.view();
                chunks.push_back(event.text.view().size());
            } else {
                EXPECT_EQ(event.text.view().size(), chunks.back()) << "the key-up has it as well";
            }
        }
        EXPECT_EQ(chunks, testCase.chunks);
        EXPECT_EQ(carried, testCase.text);
        EXPECT_EQ(desktop.keyboard.posted.size(), 2 * testCase.chunks.size());
        EXPECT_NEAR(elapsed(), 0.02 * static_cast<double>(testCase.chunks.size()), 1e-9);
    }
}

TEST_F(SystemEventPosterTest, WaitsForModifiers) {
    struct Case {
        const char* name;
        KeyCode held;
        double releasedAfter;
        double timeout;
        double earliest, latest; // seconds until the return
        int leastReads, mostReads;
    };
    const Case cases[] = {
        {"released meanwhile", keyCode::rightShift, 0.05, 0.3, 0.05, 0.06, 10, 13},
        {"held throughout", keyCode::leftShift, 9, 0.5, 0.5, 0.506, 99, 102},
        {"Caps Lock is not waited for", keyCode::capsLock, 9, 0.3, 0, 0, 1, 1},
        {"no time", keyCode::leftShift, 9, 0, 0, 0, 0, 0},
    };
    for (const Case& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        desktop.keyboard.press(testCase.held);
        desktop.at(testCase.releasedAfter, [&] { desktop.keyboard.release(testCase.held); });
        desktop.keyboard.modifierStateReads = 0;
        started = desktop.scheduler.now();
        poster.waitForModifiersReleased(testCase.timeout);
        EXPECT_GE(elapsed(), testCase.earliest - 1e-9);
        EXPECT_LE(elapsed(), testCase.latest);
        EXPECT_GE(desktop.keyboard.modifierStateReads, testCase.leastReads);
        EXPECT_LE(desktop.keyboard.modifierStateReads, testCase.mostReads);
        desktop.run();
    }
}

} // namespace
} // namespace kelvora
