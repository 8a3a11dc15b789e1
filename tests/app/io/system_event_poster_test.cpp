// SPDX-License-Identifier: MIT
#include "app/io/system_event_poster.h"

#include "tests/support/fake_desktop/fake_desktop.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace kelvora {
namespace {

class SystemEventPosterTest : public testing::Test {
protected:
    double elapsed() const { return desktop.scheduler.now() - started; }

    fake::FakeDesktop desktop;
    std::vector<fake::Keyboard::Posted>& posted = desktop.keyboard.posted;
    SystemEventPoster poster{desktop.keyboard, [this] { return desktop.scheduler.now(); }};
    double started = desktop.scheduler.now();
};

TEST_F(SystemEventPosterTest, KeyGoesDownAndUpWithPauseAfterEachThatIsSent) {
    poster.sendKey(keyCode::c, eventFlag::command, 0.015);
    ASSERT_EQ(posted.size(), 2U);
    EXPECT_NEAR(posted[1].time - started, 0.015, 1e-9);
    EXPECT_NEAR(elapsed(), 0.03, 1e-9);
    for (const auto& [time, direction, event] : posted) {
        EXPECT_EQ(event.keyCode, keyCode::c);
        EXPECT_EQ(event.flags, eventFlag::command);
        EXPECT_EQ(event.sourceUserData, 82761005551442);
        EXPECT_TRUE(event.text.empty());
    }
    desktop.keyboard.refuses = [](KeyCode, KeyDirection direction) {
        return direction == KeyDirection::down;
    };
    poster.typeText(u"a");
    ASSERT_EQ(posted.size(), 3U);
    EXPECT_EQ(posted[2].direction, KeyDirection::up);
    EXPECT_NEAR(elapsed(), 0.04, 1e-9);
}

TEST_F(SystemEventPosterTest, TextIsCutIntoChunks) {
    const std::u16string n18(18, u'n'), n19(19, u'n'), n20(20, u'n');
    const struct {
        const char* name;
        std::u16string text;
        std::vector<std::size_t> chunks; // UTF-16 units of each
    } cases[] = {
        {"a full chunk", n20, {20}},
        {"one more", n20 + u"x", {20, 1}},
        {"pair across the end of a chunk", n19 + u"😀", {19, 2}},
        {"pair at the very end of a chunk", n18 + u"😀", {20}},
        {"pair ends a chunk that is not the last", n18 + u"😀x", {20, 1}},
        {"lone high surrogate, last", n19 + u'\xD83D', {20}},
        {"lone high surrogate, more behind", n19 + u'\xD83D' + u"x", {19, 2}},
    };
    for (const auto& [name, text, expected] : cases) {
        SCOPED_TRACE(name);
        posted.clear();
        started = desktop.scheduler.now();
        poster.typeText(text);
        std::u16string carried;
        std::vector<std::size_t> chunks;
        for (const auto& [time, direction, event] : posted) {
            EXPECT_EQ(event.keyCode, 0);
            EXPECT_EQ(event.sourceUserData, SystemEventPoster::userData);
            if (direction == KeyDirection::down) {
                carried += event.text.view();
                chunks.push_back(event.text.view().size());
            } else {
                EXPECT_EQ(event.text.view().size(), chunks.back()) << "the key-up has it as well";
            }
        }
        EXPECT_EQ(chunks, expected);
        EXPECT_EQ(carried, text);
        EXPECT_NEAR(elapsed(), 0.02 * static_cast<double>(chunks.size()), 1e-9);
    }
}

TEST_F(SystemEventPosterTest, WaitsForControlButNotForCapsLock) {
    desktop.keyboard.press(keyCode::capsLock);
    poster.waitForModifiersReleased(0.3);
    EXPECT_EQ(elapsed(), 0);
    desktop.keyboard.press(keyCode::leftControl);
    poster.waitForModifiersReleased(0.5);
    EXPECT_NEAR(elapsed(), 0.503, 0.0031);
}

} // namespace
} // namespace kelvora
