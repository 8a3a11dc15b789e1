// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_keymap.h"

#include "tests/host/x11/layout_server.h"

#include <gtest/gtest.h>
#include <string>
#include <xcb/xtest.h>

namespace kelvora {
namespace {

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
    std::string groupName(xkb_layout_index_t group) {
        const char* name = xkb_keymap_layout_get_name(keymap_->keymap(), group);
        return name != nullptr ? name : "";
    }
};

TEST_F(X11KeymapTest, manyChangesAreOneUntilTheKeymapIsUsed) {
    const std::uint64_t version = keymap_->version();
    const XkbKeymapPtr before(xkb_keymap_ref(keymap_->keymap()));
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

TEST_F(X11KeymapTest, followsTheKeyboardThatWasUsedLast) {
    constexpr const char* xtestKeyboard = "5"; // Xvfb numbers its devices the same every time
    server_.run({"setxkbmap", "-device", xtestKeyboard, "-layout", "de,gr"});
    handleNotices();
    EXPECT_EQ(groupName(0), "English (US)");
    for (const std::uint8_t type : {std::uint8_t{XCB_KEY_PRESS}, std::uint8_t{XCB_KEY_RELEASE}})
        xcb_test_fake_input(connection_.get(), type, 38, 0, XCB_NONE, 0, 0, 0);
    handleNotices();
    EXPECT_EQ(groupName(0), "German");
}

TEST_F(X11KeymapTest, keepsTheLastKeymapWhenTheServerIsGone) {
    server_.setLayouts("de");
    handleNotices();
    server_.kill();
    EXPECT_EQ(groupName(1), "Russian");
    EXPECT_FALSE(keymap_->synchronizeState());
}

} // namespace
} // namespace kelvora
