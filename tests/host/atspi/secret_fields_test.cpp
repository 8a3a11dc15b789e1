// SPDX-License-Identifier: MIT
#include "host/linux/atspi/atspi_focus_follower.h"
#include "host/linux/secure_entry_gate.h"
#include "host/linux/x11/x11_connection.h"
#include "host/linux/x11/x11_event_source.h"
#include "tests/host/x11/poll_loop.h"
#include "tests/support/real_desktop/real_desktop.h"
#include "tests/support/real_desktop/wait_until.h"
#include "tests/support/real_desktop/windows.h"

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <memory>
#include <string>
#include <vector>

namespace kelvora {
namespace {

using namespace std::chrono_literals;

struct Toolkit {
    const char* name;
    std::vector<std::string> command; ///< with a plain field focused
    int tabs;                         ///< from it to the password field
    int passwordPlace;                ///< pixels from the top to the password field; 0: nowhere
};

const std::vector<Toolkit>& toolkits() {
    static const std::vector<Toolkit> all{
        {"Gtk3", {KELVORA_FIELDS_GTK3, "entry"}, 1, 75},
        {"Gtk4", {KELVORA_FIELDS_GTK4, "entry"}, 1, 65},
        {"Qt6", {KELVORA_FIELDS_QT6, "entry"}, 1, 50},
        {"Chromium",
         {"chromium", "--no-sandbox", "--no-first-run", "--disable-gpu",
          "--force-renderer-accessibility", "--password-store=basic",
          "file://" KELVORA_FIELDS_HTML "#entry"},
         3,
         0},
    };
    return all;
}

std::string busAddressOf(const real::RealDesktop& desktop) {
    // The process's own services are found through its environment.
    setenv("DBUS_SESSION_BUS_ADDRESS", desktop.busAddress().c_str(), 1);
    return desktop.busAddress();
}

class SecretFields : public testing::TestWithParam<Toolkit> {
protected:
    SecretFields() {
        tap_ = source_.createTap(~EventMask{0}, [this](const InputEvent& event) {
            if (event.type == EventType::keyDown)
                for (const char16_t unit : event.text.view())
                    seen_ += static_cast<char>(unit);
            else if (event.type == EventType::flagsChanged)
                seen_ += '^';
        });
        desktop_.keyboard().setSource(real::KeySource::physical);
    }

    bool becomes(const std::function<bool()>& condition) {
        return real::waitUntil(
            [&] {
                loop_.turn(5ms);
                return condition();
            },
            20s);
    }
    void rest(std::chrono::milliseconds time) {
        const auto end = std::chrono::steady_clock::now() + time;
        while (std::chrono::steady_clock::now() < end)
            loop_.turn(5ms);
    }

    /// Ends with the plain field focused, empty, and told of.
    void open(real::ChildProcess& program) {
        std::optional<real::WindowId> window;
        ASSERT_TRUE(becomes([&] {
            window = real::windowOfProcess(desktop_.display(), program.pid());
            return window.has_value();
        }));
        window_ = *window;
        ASSERT_TRUE(real::activateWindow(desktop_.display(), window_));
        ASSERT_TRUE(becomes([&] { return follower_.focusedElement(program.pid()).has_value(); }));
        rest(500ms);
        tap_->setEnabled(true);
    }
    void clickField(int y) {
        const real::WindowFrame frame = real::windowFrame(desktop_.display(), window_);
        real::clickAt(desktop_.display(), frame.x + frame.width / 2, frame.y + y);
    }
    /// Runs `act` as somebody at the keyboard, while the program listens.
    void meanwhile(const std::function<void(real::Keyboard&)>& act) {
        auto done = std::async(std::launch::async, [&] { act(desktop_.keyboard()); });
        while (done.wait_for(0s) != std::future_status::ready)
            loop_.turn(1ms);
    }
    /// As a menu does, or a window manager while a key is down.
    void grabForAMoment() {
        const XcbConnectionPtr connection =
            connectX11(desktop_.environment().at("DISPLAY").c_str());
        ASSERT_TRUE(connection);
        const xcb_window_t root =
            xcb_setup_roots_iterator(xcb_get_setup(connection.get())).data->root;
        const XcbPtr<xcb_grab_keyboard_reply_t> reply(
            xcb_grab_keyboard_reply(connection.get(),
                                    xcb_grab_keyboard(connection.get(), 0, root, XCB_CURRENT_TIME,
                                                      XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
                                    nullptr));
        ASSERT_TRUE(reply);
        ASSERT_EQ(reply->status, XCB_GRAB_STATUS_SUCCESS);
        rest(100ms);
    }
    void goToPassword(real::Keyboard& keyboard) {
        for (int tab = 0; tab < GetParam().tabs; ++tab)
            keyboard.tapNamed("Tab");
    }
    void goBack(real::Keyboard& keyboard) {
        for (int tab = 0; tab < GetParam().tabs; ++tab)
            keyboard.chord("Shift_L+Tab");
    }
    std::string takeSeen() {
        rest(SecureEntryGate::longestPending + 200ms);
        std::string letters;
        for (const char letter : std::exchange(seen_, {}))
            if (std::isalpha(static_cast<unsigned char>(letter)) != 0)
                letters += letter;
        return letters;
    }

    real::RealDesktop desktop_;
    const std::string bus_ = busAddressOf(desktop_);
    PollLoop loop_;
    SecureEntry entry_;
    AtspiFocusFollower follower_{loop_, [this](const FocusReport& report) {
                                     entry_.report(report, std::chrono::steady_clock::now());
                                 }};
    X11PostingMarks marks_;
    int focusChanges_ = 0;
    X11EventSource source_{desktop_.environment().at("DISPLAY"),
                           loop_,
                           marks_,
                           {.onFocusChanged = [this] { ++focusChanges_; }, .onServerGone = {}},
                           &entry_};
    std::unique_ptr<EventTap> tap_;
    std::string seen_;
    real::WindowId window_ = 0;
};

TEST_P(SecretFields, AreTypedIntoUnseen) {
    real::ChildProcess program(GetParam().command, {.environment = desktop_.environment()});
    ASSERT_NO_FATAL_FAILURE(open(program));

    for (const real::Rhythm rhythm : {real::fastRhythm, real::personRhythm}) {
        desktop_.keyboard().setRhythm(rhythm);
        meanwhile([](real::Keyboard& keyboard) { keyboard.type("ab"); });
        EXPECT_EQ(takeSeen(), "ab");
        meanwhile([this](real::Keyboard& keyboard) {
            goToPassword(keyboard);
            keyboard.type("hide");
        });
        EXPECT_EQ(takeSeen(), "");
        EXPECT_EQ(entry_.secrecy(), FocusSecrecy::secret);
        meanwhile([](real::Keyboard& keyboard) {
            keyboard.type("me");
            keyboard.doubleShift();
        });
        rest(200ms);
        EXPECT_EQ(seen_, "") << "not even Shift";
        grabForAMoment();
        rest(SecureEntryGate::longestSilence + 200ms);
        meanwhile([](real::Keyboard& keyboard) { keyboard.type("too"); });
        EXPECT_EQ(takeSeen(), "") << "after a menu was open";
        meanwhile([this](real::Keyboard& keyboard) {
            goBack(keyboard);
            keyboard.type("cd");
        });
        EXPECT_EQ(takeSeen(), "cd") << "typed at once into the plain field";
    }
    EXPECT_GE(focusChanges_, 4);

    if (GetParam().passwordPlace != 0) {
        constexpr int entryPlace = 22;
        desktop_.keyboard().setRhythm(real::fastRhythm);
        meanwhile([this](real::Keyboard& keyboard) {
            clickField(GetParam().passwordPlace);
            keyboard.type("hide");
        });
        EXPECT_EQ(takeSeen(), "");
        EXPECT_EQ(entry_.secrecy(), FocusSecrecy::secret);
        meanwhile([this](real::Keyboard& keyboard) {
            clickField(entryPlace);
            keyboard.type("ef");
        });
        EXPECT_EQ(takeSeen(), "ef");
    }

    meanwhile([this](real::Keyboard& keyboard) { goToPassword(keyboard); });
    ASSERT_TRUE(becomes([&] { return entry_.secrecy() == FocusSecrecy::secret; }));
    program.sendSignal(SIGKILL);
    EXPECT_TRUE(becomes([&] { return entry_.secrecy() == FocusSecrecy::ordinary; }));
    EXPECT_FALSE(follower_.focusedElement());
}

INSTANTIATE_TEST_SUITE_P(Toolkits, SecretFields, testing::ValuesIn(toolkits()),
                         [](const auto& toolkit) { return toolkit.param.name; });

} // namespace
} // namespace kelvora
