// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_keymap.h"

#include "core/mapping/input_source_switcher.h"
#include "tests/host/x11/layout_server.h"

#include <gtest/gtest.h>
#include <string>
#include <xcb/xtest.h>

namespace kelvora {
namespace {

constexpr std::uint8_t capsLockKey = 66;
constexpr std::uint8_t letterKey = 38;

class X11KeymapTest : public testing::Test {
protected:
    LayoutServer server_;
    XcbConnectionPtr connection_;
    std::unique_ptr<X11Keymap> keymap_;

    void SetUp() override {
        server_.setLayouts("us,ru");
        connection_ = connectX11(server_.display().c_str());
        ASSERT_TRUE(connection_);
        keymap_ = X11Keymap::create(connection_.get());
        ASSERT_TRUE(keymap_);
    }
    void handleNotices() {
        ASSERT_TRUE(keymap_->synchronizeState());
        while (const XcbPtr<xcb_generic_event_t> event{xcb_poll_for_event(connection_.get())})
            keymap_->handleEvent(event.get());
    }
    void tap(std::uint8_t key) {
        for (const std::uint8_t type : {std::uint8_t{XCB_KEY_PRESS}, std::uint8_t{XCB_KEY_RELEASE}})
            xcb_test_fake_input(connection_.get(), type, key, 0, XCB_NONE, 0, 0, 0);
    }
    std::string groupName(xkb_layout_index_t group) {
        const char* name = xkb_keymap_layout_get_name(keymap_->keymap(), group);
        return name != nullptr ? name : "";
    }
};

TEST_F(X11KeymapTest, manyChangesAreOneUntilTheKeymapIsUsed) {
    const std::uint64_t version = keymap_->version();
    const XkbKeymapPtr before(xkb_keymap_ref(keymap_->keymap()));
    server_.setLayouts("fr");
    server_.setLayouts("us,ru,gr");
    server_.setLayouts("de");
    handleNotices();
    EXPECT_EQ(keymap_->version(), version + 1);
    EXPECT_FALSE(keymap_->isCurrent());
    xkb_keymap* const after = keymap_->keymap();
    EXPECT_NE(after, before.get());
    EXPECT_EQ(groupName(0), "German");
    handleNotices();
    EXPECT_EQ(keymap_->keymap(), after) << "fetched again without a change";
    EXPECT_EQ(keymap_->version(), version + 1);
    EXPECT_TRUE(keymap_->isCurrent());
}

TEST_F(X11KeymapTest, noticesCarryGroupsAndLocks) {
    tap(letterKey); // the first key of a keyboard brings its keymap
    handleNotices();
    const std::uint64_t version = keymap_->version();
    const auto sources = server_.inputSources();
    ASSERT_TRUE(InputSourceSwitcher::select(*sources, "ru"));
    tap(capsLockKey);
    handleNotices();
    EXPECT_EQ(keymap_->group(), 1u);
    EXPECT_EQ(keymap_->state(), (X11KeyboardState{0, 0, 2, 1, 1}));
    tap(capsLockKey);
    ASSERT_TRUE(InputSourceSwitcher::select(*sources, "us"));
    handleNotices();
    EXPECT_EQ(keymap_->state(), X11KeyboardState());
    EXPECT_EQ(keymap_->version(), version) << "state is no change of the keymap";
}

TEST_F(X11KeymapTest, followsTheKeyboardThatWasUsedLast) {
    constexpr const char* xtestKeyboard = "5"; // Xvfb numbers its devices the same every time
    server_.run({"setxkbmap", "-device", xtestKeyboard, "-layout", "de,gr"});
    handleNotices();
    EXPECT_EQ(groupName(0), "English (US)");
    tap(letterKey);
    handleNotices();
    EXPECT_EQ(groupName(0), "German");
    EXPECT_EQ(groupName(1), "Greek");
}

TEST_F(X11KeymapTest, keepsTheLastKeymapWhenTheServerIsGone) {
    server_.setLayouts("de");
    handleNotices();
    server_.kill();
    EXPECT_NE(keymap_->keymap(), nullptr);
    EXPECT_EQ(groupName(1), "Russian");
    EXPECT_FALSE(keymap_->synchronizeState());
}

} // namespace
} // namespace kelvora
