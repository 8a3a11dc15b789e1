// SPDX-License-Identifier: MIT
#include "host/linux/updates/update_flow.h"

#include "tests/host/updates/maintainer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kelvora {
namespace {

using namespace std::chrono_literals;
using test::Document;
using test::Maintainer;

/// A computer in virtual time that writes down what happens, with the hour of it.
class Computer final : public UpdateEffects {
public:
    Computer() { launch(); }

    void launch() {
        flow = std::make_unique<UpdateFlow>(
            UpdateFlow::Setup{.configuration = {.feedUrl = "https://example.org/feed",
                                                .publicKey = maintainer.publicKey(),
                                                .interval = 24h},
                              .installed = *UpdateVersion::parse("1.1"),
                              .architecture = "amd64",
                              .gentleReminders = true},
            memory, *this);
        flow->start();
    }
    /// Lets time pass; each check finds that feed, or fails without one.
    void run(std::chrono::seconds time, const std::optional<Document>& found) {
        const auto end = now_ + time;
        while (wakeAt_ && *wakeAt_ <= end) {
            now_ = std::max(now_, *std::exchange(wakeAt_, std::nullopt));
            ++wakeUps;
            flow->timeHasCome();
            if (isFetching_) {
                checks.push_back(std::chrono::floor<std::chrono::hours>(now_ - start_).count());
                if (!isFeedSlow)
                    reply(found);
            }
        }
        now_ = end;
    }
    void reply(const std::optional<Document>& found) {
        isFetching_ = false;
        if (found)
            flow->feedArrived(maintainer.feed(test::json(*found, maintainer)));
        else
            flow->transferFailed(UpdateNotice::unreachable);
    }
    /// What the window says to somebody who asks now.
    std::string answer(const Document& found) {
        flow->checkForUpdates();
        EXPECT_EQ(window, "checking in front");
        reply(found);
        return window;
    }
    void setClockBack(std::chrono::seconds time) {
        now_ -= time;
        *wakeAt_ -= time; // timers are on a clock of their own
    }

    Maintainer maintainer;
    std::unique_ptr<UpdateFlow> flow;
    std::optional<UpdateMemory> memory;
    std::vector<long> checks; // hours since the start
    int wakeUps = 0;
    bool isFeedSlow = false; ///< a check goes unanswered
    std::string window;      ///< which screen is shown, and how it came; empty when none is open

private:
    std::chrono::sys_seconds now() override { return now_; }
    void wakeAfter(std::chrono::seconds pause) override { wakeAt_ = now_ + pause; }
    void fetchFeed(const std::string&) override { isFetching_ = true; }
    void fetchPackage(const UpdateOffer&) override {}
    void installPackage() override {}
    void abandonTransfer() override { isFetching_ = false; }
    void removeLeftovers() override {}
    void show(const UpdateScreen& screen, UpdatePresentation presentation) override {
        const char* const screens[]{"checking", "offer", "downloading", "installing", "notice"};
        const auto* notice = std::get_if<NoticeScreen>(&screen);
        window = notice ? std::string(nameOf(notice->notice)) : screens[screen.index()];
        window += presentation == UpdatePresentation::inFront ? " in front" : "";
    }
    void closeWindow() override { window.clear(); }
    void willShow(UpdateShowing, const UpdateItem&, UserUpdateState) override {}
    void remember(const UpdateMemory& fresh) override {
        memory = parseUpdateMemory(formatUpdateMemory(fresh));
    }
    void log(LogLevel, std::string_view) override {}

    const std::chrono::sys_seconds start_{std::chrono::seconds(1'900'000'000)};
    std::chrono::sys_seconds now_ = start_;
    std::optional<std::chrono::sys_seconds> wakeAt_;
    bool isFetching_ = false;
};

TEST(UpdateFlow, ChecksSeldomAndQuietlyAndRemindsOnceAWeek) {
    Computer computer;
    const Document current{.version = "1.1"};
    computer.run(4min, current);
    EXPECT_TRUE(computer.checks.empty());
    computer.run(72h, current);
    EXPECT_LE(computer.wakeUps, 3 * 7);
    // Failures are retried sooner, but silently; a restart is no reason to check again.
    computer.run(10h, std::nullopt);
    computer.run(4h, current);
    computer.launch();
    computer.run(12h, current);
    EXPECT_EQ(computer.checks, (std::vector<long>{0, 24, 48, 72, 76, 80, 84}));
    // A clock that was years ahead for a while keeps nobody from checking.
    computer.setClockBack(std::chrono::days(2000));
    computer.run(5h, current);
    EXPECT_EQ(computer.checks.size(), 8U);
    EXPECT_EQ(computer.window, "");

    computer.run(24h, Document{});
    EXPECT_EQ(computer.window, "offer");
    // An open window is not disturbed by further checks.
    computer.run(48h, Document{});
    EXPECT_EQ(computer.checks.size(), 9U);
    computer.flow->act(UpdateAction::dismiss);
    computer.launch();
    computer.run(48h, Document{});
    EXPECT_EQ(computer.window, "");
    computer.run(9 * 24h, Document{});
    EXPECT_EQ(computer.window, "offer");
}

TEST(UpdateFlow, AScheduledCheckThatAPersonClosesIsRetried) {
    Computer computer;
    const Document current{.version = "1.1"};
    computer.isFeedSlow = true;
    computer.run(1h, current);
    computer.flow->checkForUpdates();
    EXPECT_EQ(computer.window, "checking in front");
    computer.flow->act(UpdateAction::dismiss);
    EXPECT_EQ(computer.window, "");
    computer.isFeedSlow = false;
    computer.run(8h, current);
    EXPECT_EQ(computer.checks, (std::vector<long>{0, 5}));
    // One that the person began changes no plan.
    computer.flow->checkForUpdates();
    computer.flow->act(UpdateAction::dismiss);
    computer.run(24h, current);
    EXPECT_EQ(computer.checks, (std::vector<long>{0, 5, 29}));
}

TEST(UpdateFlow, AnswersWhoAsks) {
    const std::pair<Document, const char*> cases[]{
        {{}, "offer in front"},
        {{.serial = "99", .version = "1.0"}, "up to date in front"},
        {{.expires = "2029-01-01T00:00:00Z"}, "the feed has expired in front"},
        {{.serial = "4"}, "the feed is older than one seen before in front"},
        {{.more = R"("minimumVersion": "1.2~", )"},
         "this version is too old for the new package in front"},
    };
    for (const auto& [document, expected] : cases) {
        Computer computer;
        computer.memory = UpdateMemory{.key = "another", .highestSerial = 1000};
        computer.launch();
        computer.answer({.serial = "5"});
        // What is refused must not count: else one forged or expired feed would shut out others.
        computer.answer({.serial = "900", .expires = "2029-01-01T00:00:00Z"});
        computer.flow->checkForUpdates();
        computer.flow->feedArrived(Maintainer().feed(test::json({.serial = "901"}, Maintainer())));
        computer.launch();
        EXPECT_EQ(computer.answer(document), expected);
    }
}

TEST(UpdateFlow, FollowsThePersonThroughEveryStage) {
    Computer computer;
    UpdateFlow& flow = *computer.flow;
    computer.answer({.expires = "2030-06-01T00:00:00Z"});
    flow.act(UpdateAction::install);
    flow.act(UpdateAction::install); // a second click
    flow.checkForUpdates();          // the menu, meanwhile
    EXPECT_EQ(computer.window, "downloading in front");
    flow.packageArrived();
    flow.act(UpdateAction::dismiss);
    EXPECT_EQ(computer.window, "");
    flow.installationEnded(UpdateNotice::installerFailed, {});
    EXPECT_EQ(computer.window, "the installer failed");
    // An offer that stood open until its feed expired is asked for again.
    computer.answer({.expires = "2030-06-01T00:00:00Z"});
    computer.run(std::chrono::days(300), std::nullopt);
    flow.act(UpdateAction::install);
    EXPECT_EQ(computer.window, "checking in front");
}

} // namespace
} // namespace kelvora
