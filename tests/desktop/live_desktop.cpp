// SPDX-License-Identifier: MIT
#include "tests/desktop/live_desktop.h"

#include "tests/support/real_desktop/editor.h"
#include "tests/support/real_desktop/terminal.h"
#include "tests/support/real_desktop/wait_until.h"

#include <algorithm>
#include <array>
#include <gmock/gmock.h>
#include <iostream>
#include <map>
#include <ostream>

namespace kelvora::real {

namespace {

std::map<ApplicationUnderTest, std::unique_ptr<LiveDesktop>>& liveDesktops() {
    static std::map<ApplicationUnderTest, std::unique_ptr<LiveDesktop>> desktops;
    return desktops;
}

std::unique_ptr<TextApplication> start(RealDesktop& desktop, ApplicationUnderTest application) {
    switch (application) {
    case ApplicationUnderTest::terminal:
        return std::make_unique<Terminal>(desktop);
    case ApplicationUnderTest::gtkEditor:
        return std::make_unique<Editor>(desktop, EditorKind::gtk);
    case ApplicationUnderTest::qtEditor:
        return std::make_unique<Editor>(desktop, EditorKind::qt);
    }
    return nullptr;
}

class EndDesktops : public testing::Environment {
public:
    void TearDown() override { liveDesktops().clear(); }
};

const testing::Environment* const endDesktops =
    testing::AddGlobalTestEnvironment(new EndDesktops); // owned by the test framework

} // namespace

LiveDesktop::LiveDesktop(ApplicationUnderTest kind)
    : initialState(desktop.keyboardState()), program(desktop, KELVORA_PROGRAM),
      application(start(desktop, kind)) {}

void PrintTo(ApplicationUnderTest application, std::ostream* stream) {
    constexpr std::array names{"terminal", "GTK editor", "Qt editor"};
    *stream << names.at(static_cast<std::size_t>(application));
}

void LiveDesktopTest::SetUp() {
    std::unique_ptr<LiveDesktop>& live = liveDesktops()[GetParam()];
    if (!live) {
        live = std::make_unique<LiveDesktop>(GetParam());
    }
    live_ = live.get();
    expectedKeymap_ = live->initialState.keymap;
    keyboard().setSource(KeySource::physical);
    keyboard().setRhythm(fastRhythm);
    lockModifiers(desktop().display(), 0);
    beginFreshLine();
}

void LiveDesktopTest::beginFreshLine() {
    ASSERT_TRUE(application().beginFreshLine())
        << application().name() << " shows \"" << application().text() << '"';
}

void LiveDesktopTest::TearDown() {
    if (HasFailure()) {
        constexpr std::size_t lastPart = 2000;
        const std::string log = program().log();
        std::cerr << "What the program said last:\n"
                  << log.substr(log.size() - std::min(log.size(), lastPart)) << '\n';
    }
    ASSERT_TRUE(program().process().isRunning()) << program().log();
}

void expectKeyboard(RealDesktop& desktop, const KeyboardState& expected) {
    KeyboardState state;
    static_cast<void>(waitUntil(
        [&] {
            state = desktop.keyboardState();
            return state == expected;
        },
        std::chrono::seconds(2)));
    EXPECT_EQ(state.layout, expected.layout);
    EXPECT_EQ(state.lockedModifiers, expected.lockedModifiers);
    EXPECT_EQ(state.pressedKeys, expected.pressedKeys);
    EXPECT_TRUE(state.keymap == expected.keymap) << "a key has another meaning than before";
}

void LiveDesktopTest::expectEnd(const std::string& text, const std::string& layout,
                                unsigned locks) {
    EXPECT_TRUE(application().showsText(text))
        << application().name() << " shows \"" << application().text() << "\" instead of \"" << text
        << '"';
    expectKeyboard(
        desktop(),
        {.layout = layout, .lockedModifiers = locks, .pressedKeys = {}, .keymap = expectedKeymap_});
}

void LiveDesktopTest::expectNothingConverted(const std::string& text, const std::string& layout) {
    ASSERT_TRUE(application().showsText(text)) << application().text();
    auto* const terminal = dynamic_cast<Terminal*>(&application());
    const std::string before = terminal != nullptr ? terminal->receivedBytes() : std::string();
    keyboard().doubleShift();
    // Longer than the program waits for modifiers, so that a late correction would be seen.
    EXPECT_TRUE(
        staysTrue([&] { return application().text() == text; }, std::chrono::milliseconds(600)))
        << application().text();
    if (terminal != nullptr) {
        EXPECT_EQ(terminal->receivedBytes(), before);
    }
    expectEnd(text, layout);
}

void LiveDesktopTest::expectTypedTextForgotten() {
    if (dynamic_cast<Terminal*>(&application()) != nullptr) {
        expectNothingConverted("ghbdtn", "us");
        return;
    }
    const std::size_t logged = program().log().size();
    keyboard().doubleShift();
    expectEnd("привет", "ru");
    EXPECT_EQ(program().log().find("Typed-word path", logged), std::string::npos);
    lockLayout(desktop().display(), 0);
}

} // namespace kelvora::real
