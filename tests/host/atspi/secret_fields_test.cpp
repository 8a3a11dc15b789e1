// SPDX-License-Identifier: MIT
#include "host/linux/atspi/atspi_connection.h"
#include "host/linux/atspi/atspi_focus_follower.h"
#include "host/linux/atspi/atspi_focus_tracker.h"
#include "host/linux/secure_entry_gate.h"
#include "host/linux/x11/x11_event_source.h"
#include "tests/host/atspi/accessible_desktop.h"
#include "tests/host/x11/poll_loop.h"
#include "tests/support/real_desktop/wait_until.h"
#include "tests/support/real_desktop/windows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <future>
#include <memory>
#include <string>
#include <vector>

namespace kelvora {
namespace {

using namespace std::chrono_literals;

class SecretFocus : public testing::Test {
protected:
    bool becomes(const std::function<bool()>& condition) {
        return real::waitUntil(
            [&] {
                loop_.turn(5ms);
                return condition();
            },
            30s);
    }
    bool becomes(FocusSecrecy secrecy) {
        return becomes([&] { return entry_.secrecy() == secrecy; });
    }
    /// Its focus is told, as its own and as that of the active window.
    bool isFollowed(const real::ChildProcess& program) {
        return becomes([&] {
            const auto element = follower_->focusedElement(program.pid());
            return element && element == follower_->focusedElement();
        });
    }
    void follow() {
        follower_ = std::make_unique<AtspiFocusFollower>(loop_, [this](const FocusReport& report) {
            reports_.push_back(report.secrecy);
            entry_.report(report, std::chrono::steady_clock::now());
        });
    }

    AccessibleDesktop desktop_;
    PollLoop loop_;
    SecureEntry entry_;
    std::vector<FocusSecrecy> reports_;
    std::unique_ptr<AtspiFocusFollower> follower_;
};

struct Toolkit {
    const char* name;
    std::vector<std::string> command; ///< with a plain field focused
    int tabs = 1;                     ///< from it to the password field
    friend void PrintTo(const Toolkit& toolkit, std::ostream* stream) { *stream << toolkit.name; }
};

const Toolkit toolkits[] = {
    {"Gtk3", {KELVORA_FIELDS_GTK3, "entry"}},
    {"Gtk4", {KELVORA_FIELDS_GTK4, "entry"}},
    {"Qt6", {KELVORA_FIELDS_QT6, "entry"}},
    {"Chromium",
     {"chromium", "--no-sandbox", "--no-first-run", "--disable-gpu",
      "--force-renderer-accessibility", "--password-store=basic",
      "file://" KELVORA_FIELDS_HTML "#entry"},
     3},
};

class SecretFields : public SecretFocus, public testing::WithParamInterface<Toolkit> {
protected:
    SecretFields() {
        follow();
        desktop_.keyboard().setSource(real::KeySource::physical);
    }

    void rest(std::chrono::milliseconds time) {
        const auto end = std::chrono::steady_clock::now() + time;
        while (std::chrono::steady_clock::now() < end)
            loop_.turn(5ms);
    }
    /// What somebody at the keyboard does, and what the program sees of it.
    std::string seen(const std::function<void(real::Keyboard&)>& act) {
        auto done = std::async(std::launch::async, [&] { act(desktop_.keyboard()); });
        while (done.wait_for(0s) != std::future_status::ready)
            loop_.turn(1ms);
        rest(SecureEntryGate::longestPending + 200ms);
        std::erase_if(seen_, [](char letter) { return letter == '\t'; });
        return std::exchange(seen_, {});
    }
    static void move(real::Keyboard& keyboard, const char* keys) {
        for (int tab = 0; tab < GetParam().tabs; ++tab)
            keyboard.chord(keys);
    }

    X11PostingMarks marks_;
    X11EventSource source_{desktop_.environment().at("DISPLAY"),
                           loop_,
                           marks_,
                           {.onFocusChanged = [](FocusChange /*change*/) {}, .onServerGone = {}},
                           &entry_};
    std::string seen_; ///< text, and "^" for Shift without
    std::unique_ptr<EventTap> tap_ =
        source_.createTap(~EventMask{0}, [this](const InputEvent& event) {
            for (const char16_t unit : event.text.view())
                seen_ += static_cast<char>(unit);
            if (event.type == EventType::flagsChanged)
                seen_ += '^';
        });
    real::WindowId window_ = 0;
};

TEST_P(SecretFields, AreTypedIntoUnseen) {
    const auto program = desktop_.start(GetParam().command);
    ASSERT_TRUE(becomes([&] {
        window_ = real::windowOfProcess(desktop_.display(), program->pid()).value_or(0);
        return window_ != 0;
    }));
    ASSERT_TRUE(real::activateWindow(desktop_.display(), window_));
    ASSERT_TRUE(becomes([&] { return follower_->focusedElement(program->pid()).has_value(); }));
    rest(500ms);
    tap_->setEnabled(true);

    for (const real::Rhythm rhythm : {real::fastRhythm, real::personRhythm}) {
        desktop_.keyboard().setRhythm(rhythm);
        EXPECT_EQ(seen([](auto& keyboard) { keyboard.type("ab"); }), "ab");
        EXPECT_EQ(seen([](auto& keyboard) {
                      move(keyboard, "Tab");
                      keyboard.type("hide");
                  }),
                  "");
        EXPECT_EQ(entry_.secrecy(), FocusSecrecy::secret);
        EXPECT_EQ(seen([](auto& keyboard) {
                      keyboard.type("me");
                      keyboard.doubleShift();
                  }),
                  "")
            << "not even Shift";
        { const real::ForeignKeyboardGrab menu(desktop_); }
        rest(SecureEntryGate::longestSilence + 200ms);
        EXPECT_EQ(seen([](auto& keyboard) { keyboard.type("too"); }), "") << "a menu was open";
        std::string back = seen([](auto& keyboard) {
            move(keyboard, "Shift_L+Tab");
            keyboard.type("cd");
        });
        std::erase(back, '^');
        EXPECT_EQ(back, "cd") << "typed at once into the plain field";
    }
    static_cast<void>(seen([](auto& keyboard) { move(keyboard, "Tab"); }));
    ASSERT_TRUE(becomes(FocusSecrecy::secret));
    program->sendSignal(SIGKILL);
    EXPECT_TRUE(becomes(FocusSecrecy::ordinary));
    EXPECT_FALSE(follower_->focusedElement());
}

INSTANTIATE_TEST_SUITE_P(Toolkits, SecretFields, testing::ValuesIn(toolkits),
                         [](const auto& toolkit) { return toolkit.param.name; });

TEST_F(SecretFocus, IsFoundFromBeforeTheStartAndPastAnApplicationThatHangs) {
    follow();
    const auto hanging = desktop_.start({KELVORA_FIELDS_QT6, "password"});
    ASSERT_TRUE(isFollowed(*hanging));
    follower_.reset();
    reports_.clear();
    follow();
    EXPECT_TRUE(isFollowed(*hanging));
    EXPECT_TRUE(becomes(FocusSecrecy::secret));
    EXPECT_EQ(std::ranges::count(reports_, FocusSecrecy::ordinary), 0) << "not even at first";
    hanging->sendSignal(SIGSTOP);
    const auto next = desktop_.start({KELVORA_FIELDS_GTK3, "entry"});
    EXPECT_TRUE(isFollowed(*next));
    EXPECT_TRUE(becomes(FocusSecrecy::ordinary));
}

TEST_F(SecretFocus, IsNotTakenByAListThatFollowsTheField) {
    follow();
    const auto program = desktop_.start({KELVORA_FIELDS_QT6, "password", "list"});
    ASSERT_TRUE(isFollowed(*program));
    ASSERT_TRUE(becomes(FocusSecrecy::secret));
    const auto field = follower_->focusedElement();
    reports_.clear();
    desktop_.keyboard().type("hide");
    ASSERT_TRUE(becomes([&] { return reports_.size() >= 4; })) << "the list said nothing";
    EXPECT_TRUE(becomes(FocusSecrecy::secret));
    EXPECT_EQ(follower_->focusedElement(), field);
    EXPECT_EQ(std::ranges::count(reports_, FocusSecrecy::ordinary), 0);
}

TEST_F(SecretFocus, OutlivesTheBus) {
    follow();
    const auto before = desktop_.start({KELVORA_FIELDS_GTK3, "entry"});
    ASSERT_TRUE(isFollowed(*before));
    const auto daemon = openAtspiConnection()->processOf("org.freedesktop.DBus");
    ASSERT_TRUE(daemon);
    ASSERT_EQ(kill(static_cast<pid_t>(daemon.value), SIGKILL), 0);
    EXPECT_TRUE(becomes([&] { return reports_.back() == FocusSecrecy::untold; }));
    EXPECT_FALSE(follower_->focusedElement());
    // Until there is a new bus, an application takes the address of the dead one and stays silent.
    ASSERT_TRUE(becomes([&] {
        const auto bus = openAtspiConnection();
        return bus && bus->processOf("org.freedesktop.DBus");
    }));
    const auto after = desktop_.start({KELVORA_FIELDS_GTK3, "entry"});
    EXPECT_TRUE(isFollowed(*after));
}

TEST(AtspiFocusTracker, TakesUpAnApplicationThatTellsOfNoWindows) {
    const AtspiReference window{":1.1", "/window"};
    const AtspiReference field{":1.2", "/field"};
    AtspiFocusTracker tracker;
    tracker.windowActivated(window);
    tracker.focusGained(field, {.isText = true, .isSecret = true});
    EXPECT_EQ(tracker.report().secrecy, FocusSecrecy::ordinary) << "it is in the background";
    tracker.windowDeactivated(window);
    EXPECT_EQ(tracker.report().secrecy, FocusSecrecy::secret) << "its focus was told first";
    tracker.windowActivated(window);
    tracker.windowDeactivated(window);
    EXPECT_EQ(tracker.report().secrecy, FocusSecrecy::ordinary) << "what it had long ago";
}

} // namespace
} // namespace kelvora
