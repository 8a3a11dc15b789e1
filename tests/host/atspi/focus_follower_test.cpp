// SPDX-License-Identifier: MIT
#include "host/linux/atspi/atspi_connection.h"
#include "host/linux/atspi/atspi_focus_follower.h"
#include "host/linux/atspi/atspi_focus_tracker.h"
#include "tests/host/x11/poll_loop.h"
#include "tests/support/real_desktop/real_desktop.h"
#include "tests/support/real_desktop/wait_until.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <memory>
#include <string>
#include <vector>

namespace kelvora {
namespace {

using namespace std::chrono_literals;

class FocusFollower : public testing::Test {
protected:
    FocusFollower() {
        // The process's own services are found through its environment.
        setenv("DBUS_SESSION_BUS_ADDRESS", desktop_.busAddress().c_str(), 1);
        follower_ = std::make_unique<AtspiFocusFollower>(
            loop_, [this](const FocusReport& report) { reports_.push_back(report.secrecy); });
    }

    bool becomes(const std::function<bool()>& condition) {
        return real::waitUntil(
            [&] {
                loop_.turn(5ms);
                return condition();
            },
            30s);
    }
    std::unique_ptr<real::ChildProcess> start(const char* program, const char* field) {
        return std::make_unique<real::ChildProcess>(
            std::vector<std::string>{program, field},
            real::ChildProcess::Options{.environment = desktop_.environment()});
    }
    /// Its focus is told, as its own and as that of the active window.
    bool isFollowed(const real::ChildProcess& program) {
        return becomes([&] {
            const auto element = follower_->focusedElement(program.pid());
            return element && element == follower_->focusedElement();
        });
    }

    real::RealDesktop desktop_;
    PollLoop loop_;
    std::vector<FocusSecrecy> reports_;
    std::unique_ptr<AtspiFocusFollower> follower_;
};

TEST(AtspiFocusTracker, TakesUpAnApplicationThatTellsOfNoWindows) {
    const AtspiReference window{":1.1", "/window"};
    const AtspiReference field{":1.2", "/field"};
    const AtspiObjectKind secret{.isText = true, .isSecret = true};

    AtspiFocusTracker tracker;
    tracker.windowActivated(window);
    tracker.focusGained(field, secret);
    EXPECT_EQ(tracker.report().secrecy, FocusSecrecy::ordinary) << "it is in the background";
    tracker.windowDeactivated(window);
    EXPECT_EQ(tracker.report().secrecy, FocusSecrecy::secret) << "its focus was told first";
    tracker.windowActivated(window);
    tracker.windowDeactivated(window);
    EXPECT_EQ(tracker.report().secrecy, FocusSecrecy::ordinary) << "what it had long ago";
}

TEST_F(FocusFollower, FindsWhatHadTheFocusBeforeItBegan) {
    const auto program = start(KELVORA_FIELDS_GTK4, "password");
    ASSERT_TRUE(isFollowed(*program));
    follower_ = std::make_unique<AtspiFocusFollower>(
        loop_, [this](const FocusReport& report) { reports_.push_back(report.secrecy); });
    reports_.clear();
    EXPECT_TRUE(isFollowed(*program));
    EXPECT_TRUE(becomes([&] { return reports_.back() == FocusSecrecy::secret; }));
    EXPECT_EQ(std::ranges::count(reports_, FocusSecrecy::ordinary), 0) << "not even at first";
}

TEST_F(FocusFollower, GoesOnPastAnApplicationThatHangs) {
    const auto hanging = start(KELVORA_FIELDS_QT6, "password");
    ASSERT_TRUE(isFollowed(*hanging));
    EXPECT_TRUE(becomes([&] { return reports_.back() == FocusSecrecy::secret; }));
    hanging->sendSignal(SIGSTOP);
    const auto next = start(KELVORA_FIELDS_GTK3, "entry");
    EXPECT_TRUE(isFollowed(*next));
    EXPECT_TRUE(becomes([&] { return reports_.back() == FocusSecrecy::ordinary; }));
}

TEST_F(FocusFollower, OutlivesTheBus) {
    const auto before = start(KELVORA_FIELDS_GTK3, "entry");
    ASSERT_TRUE(isFollowed(*before));
    {
        const std::unique_ptr<BusConnection> connection = openAtspiConnection();
        ASSERT_TRUE(connection);
        const auto daemon = connection->processOf("org.freedesktop.DBus");
        ASSERT_TRUE(daemon);
        ASSERT_EQ(kill(static_cast<pid_t>(daemon.value), SIGKILL), 0);
    }
    EXPECT_TRUE(becomes([&] { return reports_.back() == FocusSecrecy::untold; }));
    EXPECT_FALSE(follower_->focusedElement());
    EXPECT_TRUE(becomes([&] { return reports_.back() != FocusSecrecy::untold; }));
    const auto after = start(KELVORA_FIELDS_GTK3, "entry");
    EXPECT_TRUE(isFollowed(*after));
}

} // namespace
} // namespace kelvora
