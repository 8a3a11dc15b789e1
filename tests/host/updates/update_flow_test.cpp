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
    explicit Computer(std::chrono::seconds interval = 24h, bool gentleReminders = true) {
        setup_ = {.configuration = {.feedUrl = "https://example.org/feed",
                                    .publicKey = maintainer.publicKey(),
                                    .interval = interval},
                  .installed = *UpdateVersion::parse("1.1"),
                  .architecture = "amd64",
                  .gentleReminders = gentleReminders};
        launch();
    }

    void launch() {
        flow = std::make_unique<UpdateFlow>(setup_, memory, *this);
        flow->start();
    }
    /// Lets time pass; each check is answered with `answer`, or fails when that is empty.
    void run(std::chrono::seconds time, const std::string& answer) {
        const auto end = now_ + time;
        while (wakeAt_ && *wakeAt_ <= end) {
            now_ = std::max(now_, *wakeAt_);
            wakeAt_.reset();
            ++wakeUps;
            flow->timeHasCome();
            if (isFetching) {
                checks.push_back(hour());
                reply(answer);
            }
        }
        now_ = end;
    }
    void reply(const std::string& answer) {
        isFetching = false;
        if (answer.empty())
            flow->transferFailed(UpdateNotice::unreachable);
        else
            flow->feedArrived(answer);
    }
    void setClockBack(std::chrono::seconds time) {
        now_ -= time;
        *wakeAt_ -= time; // timers are on a clock of their own
    }
    [[nodiscard]] std::string feed(Document document) const {
        return maintainer.feed(test::json(document, maintainer));
    }
    /// Which screen is shown, and how it came; empty when no window is open.
    [[nodiscard]] std::string window() const { return window_; }

    Maintainer maintainer;
    std::unique_ptr<UpdateFlow> flow;
    std::optional<UpdateMemory> memory;
    std::vector<long> checks; // hours since the start
    std::vector<std::string> announced;
    int wakeUps = 0;
    bool isFetching = false;
    bool isAbandoned = false;

private:
    [[nodiscard]] long hour() const {
        return std::chrono::floor<std::chrono::hours>(now_ - start_).count();
    }

    std::chrono::sys_seconds now() override { return now_; }
    void wakeAfter(std::chrono::seconds pause) override { wakeAt_ = now_ + pause; }
    void fetchFeed(const std::string&) override { isFetching = true; }
    void fetchPackage(const UpdateOffer&) override {}
    void installPackage() override {}
    void abandonTransfer() override { isAbandoned = true; }
    void removeLeftovers() override {}
    void show(const UpdateScreen& screen, UpdatePresentation presentation) override {
        const char* const screens[]{"checking", "offer", "downloading", "installing", "notice"};
        const auto* notice = std::get_if<NoticeScreen>(&screen);
        window_ = notice ? std::string(nameOf(notice->notice)) : screens[screen.index()];
        window_ += presentation == UpdatePresentation::inFront ? " in front" : "";
    }
    void closeWindow() override { window_.clear(); }
    void willShow(UpdateShowing showing, const UpdateItem& update, UserUpdateState state) override {
        announced.push_back(update.version +
                            (showing == UpdateShowing::byController ? " shown" : " reminded") +
                            (state == UserUpdateState::userInitiated ? " to who asked" : ""));
    }
    void remember(const UpdateMemory& fresh) override {
        memory = parseUpdateMemory(formatUpdateMemory(fresh));
    }
    void log(LogLevel, std::string_view) override {}

    std::optional<UpdateFlow::Setup> setup_;
    const std::chrono::sys_seconds start_{std::chrono::seconds(1'900'000'000)};
    std::chrono::sys_seconds now_ = start_;
    std::optional<std::chrono::sys_seconds> wakeAt_;
    std::string window_;
};

TEST(UpdateFlow, checksSeldomAndQuietly) {
    Computer computer;
    const std::string current = computer.feed({.version = "1.1"});
    computer.run(4min, current);
    EXPECT_TRUE(computer.checks.empty());
    computer.run(72h, current);
    EXPECT_EQ(computer.checks, (std::vector<long>{0, 24, 48}));
    EXPECT_LE(computer.wakeUps, 3 * 7);
    EXPECT_EQ(computer.window(), "");

    // Failures are retried sooner, but silently; a restart is no reason to check again.
    computer.checks.clear();
    computer.run(10h, "");
    EXPECT_EQ(computer.checks, (std::vector<long>{72, 76, 80}));
    computer.run(4h, current);
    computer.checks.clear();
    computer.launch();
    computer.run(12h, current);
    EXPECT_TRUE(computer.checks.empty());
    EXPECT_EQ(computer.window(), "");

    // A clock that was years ahead for a while keeps nobody from checking.
    computer.setClockBack(std::chrono::days(2000));
    computer.run(5h, computer.feed({.version = "1.1"}));
    EXPECT_EQ(computer.checks.size(), 1U);
}

TEST(UpdateFlow, remindsWithoutDisturbingAndNotAgainForAWeek) {
    Computer computer;
    const std::string newer = computer.feed({});
    computer.run(1h, newer);
    EXPECT_EQ(computer.window(), "offer");
    // An open window is not disturbed by further checks.
    computer.run(48h, newer);
    EXPECT_EQ(computer.checks.size(), 1U);
    computer.flow->act(UpdateAction::dismiss);
    computer.launch();
    computer.run(48h, newer);
    EXPECT_EQ(computer.window(), "");
    computer.run(26h, computer.feed({.serial = "8", .version = "1.3"}));
    EXPECT_EQ(computer.window(), "offer");
    computer.flow->act(UpdateAction::dismiss);
    computer.run(9 * 24h, computer.feed({.serial = "9", .version = "1.3"}));
    EXPECT_EQ(computer.announced,
              (std::vector<std::string>{"1.2.0 reminded", "1.3 reminded", "1.3 reminded"}));

    Computer blunt(24h, false);
    blunt.run(1h, blunt.feed({}));
    EXPECT_EQ(blunt.window(), "offer in front");
    EXPECT_EQ(blunt.announced, std::vector<std::string>{"1.2.0 shown"});
}

TEST(UpdateFlow, answersWhoAsks) {
    const struct {
        const char* name;
        Document document;
        std::string window;
    } cases[]{
        {"newer", {}, "offer in front"},
        {"same", {.version = "1.1"}, "up to date in front"},
        {"older, with a newer serial", {.serial = "99", .version = "1.0"}, "up to date in front"},
        {"expired", {.expires = "2029-01-01T00:00:00Z"}, "the feed has expired in front"},
        {"seen before", {.serial = "4"}, "the feed is older than one seen before in front"},
        {"not from here",
         {.more = R"("minimumVersion": "1.2~", )"},
         "this version is too old for the new package in front"},
    };
    for (const auto& row : cases) {
        Computer computer;
        computer.memory =
            UpdateMemory{.key = encodeBase64(computer.maintainer.publicKey()), .highestSerial = 5};
        computer.launch();
        computer.flow->checkForUpdates();
        EXPECT_EQ(computer.window(), "checking in front") << row.name;
        computer.reply(computer.feed(row.document));
        EXPECT_EQ(computer.window(), row.window) << row.name;
    }
}

TEST(UpdateFlow, keepsTheHighestSerialOfAKeyOnly) {
    Computer computer;
    computer.memory = UpdateMemory{.key = "another", .highestSerial = 1000};
    computer.launch();
    computer.flow->checkForUpdates();
    computer.reply(computer.feed({}));
    EXPECT_EQ(computer.window(), "offer in front");
    ASSERT_TRUE(computer.memory);
    EXPECT_EQ(computer.memory->highestSerial, 7);

    // What is refused must not count: else one forged or expired feed would shut out all others.
    computer.flow->checkForUpdates();
    computer.reply(computer.feed({.serial = "900", .expires = "2029-01-01T00:00:00Z"}));
    computer.flow->checkForUpdates();
    computer.reply(Maintainer().feed(test::json({.serial = "901"}, computer.maintainer)));
    EXPECT_EQ(computer.memory->highestSerial, 7);
}

TEST(UpdateFlow, followsThePersonThroughEveryStage) {
    Computer computer;
    UpdateFlow& flow = *computer.flow;
    // Joining a check that was scheduled makes it one's own, its failure included.
    computer.run(1h, computer.feed({.version = "1.1"}));
    flow.checkForUpdates();
    flow.act(UpdateAction::dismiss);
    EXPECT_TRUE(computer.isAbandoned);
    EXPECT_EQ(computer.window(), "");

    flow.checkForUpdates();
    computer.reply("");
    EXPECT_EQ(computer.window(), "the server is unreachable in front");
    flow.act(UpdateAction::retry);
    computer.reply(computer.feed({}));
    flow.act(UpdateAction::install);
    EXPECT_EQ(computer.window(), "downloading");
    flow.act(UpdateAction::install); // a second click
    flow.checkForUpdates();          // the menu, meanwhile
    EXPECT_EQ(computer.window(), "downloading in front");
    flow.packageArrived();
    flow.act(UpdateAction::dismiss);
    EXPECT_EQ(computer.window(), "");
    flow.installationEnded(UpdateNotice::installerFailed, {});
    EXPECT_EQ(computer.window(), "the installer failed");

    // An offer that stood open until its feed expired is asked for again.
    flow.checkForUpdates();
    computer.reply(computer.feed({.expires = "2030-06-01T00:00:00Z"}));
    computer.run(std::chrono::days(300), "");
    flow.act(UpdateAction::install);
    EXPECT_EQ(computer.window(), "checking in front");
}

} // namespace
} // namespace kelvora
