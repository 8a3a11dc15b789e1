// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_input_sources.h"

#include "core/mapping/input_source_switcher.h"
#include "host/linux/xkb/key_layout_data.h"
#include "tests/support/contracts/input_sources_contract.h"
#include "tests/support/real_desktop/child_process.h"
#include "tests/support/real_desktop/wait_until.h"
#include "tests/support/real_desktop/x_server.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>
#include <xcb/xtest.h>

namespace kelvora {
namespace {

class X11World : public contract::InputSourcesWorld {
public:
    X11World() { setLayouts({"us,ru,de"}); }
    InputSources& sources() override { return *sources_; }
    const KeyTranslator& translator() override { return reader_; }

    void run(std::vector<std::string> command) {
        real::ChildProcess program(
            std::move(command),
            {{{"PATH", "/usr/bin:/bin"}, {"DISPLAY", server_.display()}}, {}, -1});
        ASSERT_EQ(program.waitForExit(real::defaultDeadline), 0);
    }
    /// Layouts, and other arguments of setxkbmap.
    void setLayouts(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"setxkbmap", "-layout"});
        arguments.insert(arguments.end(), {"-model", "pc105"}); // the first one counts
        run(std::move(arguments));
    }

    real::XServer server_;
    std::unique_ptr<X11InputSources> sources_ =
        X11InputSources::create(connectX11(server_.display().c_str()));
    KeyLayoutReader reader_;
};

class X11InputSourcesTest : public testing::Test, protected X11World {
protected:
    std::u16string convert(const char* firstID, const char* secondID, std::u16string_view text) {
        const auto mapping = InputSourceSwitcher::mapping(*sources_, reader_, firstID, secondID);
        return mapping ? mapping->convert(text, 0) : u"<no mapping>";
    }
    std::string currentID() { return InputSourceSwitcher::currentID(*sources_).value_or("<none>"); }
};

TEST_F(X11InputSourcesTest, ACallRightAfterAChangeSeesTheNewLayouts) {
    for (int round = 0; round < 5; ++round) {
        setLayouts({"us,ru", "-variant", ""});
        EXPECT_EQ(convert("us", "ru", u"ghbdtn"), u"привет");
        setLayouts({"us,ru", "-variant", ",phonetic"});
        EXPECT_EQ(convert("us", "ru(phonetic)", u"priwet"), u"привет");
    }
    // Selections survive another list, and only what is in it is selected.
    setLayouts({"ru,us", "-variant", ""});
    EXPECT_TRUE(InputSourceSwitcher::select(*sources_, "us"));
    EXPECT_FALSE(InputSourceSwitcher::select(*sources_, "de"));
    EXPECT_EQ(currentID(), "us");
    setLayouts({"fr"}); // the server still reports the second group
    EXPECT_EQ(currentID(), "fr");
    EXPECT_TRUE(InputSourceSwitcher::select(*sources_, "fr"));
    setLayouts({"us,ru", "-model", "jp106"});
    EXPECT_EQ(reader_.layoutType(sources_->keyboardType()), PhysicalLayoutType::jis);
    run({"xprop", "-root", "-f", "_XKB_RULES_NAMES", "8s", "-set", "_XKB_RULES_NAMES", "\xFF,,"});
    EXPECT_EQ(convert("us", "ru", u"ghbdtn"), u"привет") << "named by the keymap itself";
}

TEST_F(X11InputSourcesTest, FollowTheKeyboardThatWasUsedLast) {
    constexpr const char* xtestKeyboard = "5"; // Xvfb numbers its devices the same every time
    setLayouts({"de,gr", "-device", xtestKeyboard});
    EXPECT_EQ(currentID(), "us");
    const XcbConnectionPtr user = connectX11(server_.display().c_str());
    for (const std::uint8_t type : {std::uint8_t{XCB_KEY_PRESS}, std::uint8_t{XCB_KEY_RELEASE}})
        xcb_test_fake_input(user.get(), type, 38, 0, XCB_NONE, 0, 0, 0);
    xcb_flush(user.get());
    EXPECT_TRUE(real::waitUntil([&] { return currentID() == "de"; }));
}

} // namespace

namespace contract {
INSTANTIATE_TEST_SUITE_P(X11, InputSourcesContract,
                         testing::Values(InputSourcesFactory{
                             "X11", [] { return std::make_unique<X11World>(); }}),
                         [](const auto& suite) { return suite.param.name; });
} // namespace contract
} // namespace kelvora
