// SPDX-License-Identifier: MIT
#include "host/linux/atspi/atspi_opt_in.h"
#include "host/linux/atspi/atspi_status.h"
#include "tests/host/atspi/field.h"
#include "tests/host/desktop/private_bus.h"
#include "tests/support/real_desktop/wait_until.h"

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <fstream>

namespace kelvora {
namespace {

const AtspiReference statusObject{"org.a11y.Bus", "/org/a11y/bus"};
constexpr const char* statusInterface = "org.a11y.Status";

class OptIn : public testing::Test {
protected:
    OptIn() { set("IsEnabled", false); }

    void set(const char* name, bool value) {
        ASSERT_EQ(session_->setProperty(statusObject, statusInterface, name, value),
                  BusError::none);
    }
    bool isOn() {
        const auto reply = session_->property<bool>(statusObject, statusInterface, "IsEnabled");
        return reply && reply.value;
    }
    bool comesOn() {
        return real::waitUntil([this] { return isOn(); });
    }
    [[nodiscard]] bool hasRecord() const { return std::filesystem::exists(record_); }

    AccessibleDesktop desktop_;
    std::unique_ptr<BusConnection> session_ = BusConnection::openSession();
    std::filesystem::path state_ = desktop_.newFile("state");
    std::filesystem::path record_ = state_ / "accessibility-was-off";
};

TEST_F(OptIn, IsPutBack) {
    {
        AtspiOptIn optIn(state_);
        EXPECT_FALSE(isOn()) << "nobody has asked";
        optIn.request();
        optIn.request();
        EXPECT_TRUE(comesOn());
        EXPECT_TRUE(hasRecord());
        EXPECT_EQ(std::filesystem::status(record_).permissions(),
                  std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    }
    EXPECT_FALSE(isOn());
    EXPECT_FALSE(hasRecord());
}

TEST_F(OptIn, SwitchesAreTold) {
    PollLoop loop;
    AtspiStatus status(loop);
    bool isTold = false;
    status.setOnChanged([&] { isTold = true; });
    // Again and again: the first changes may come before the bus knows that we listen.
    EXPECT_TRUE(turnUntil(loop, [&] {
        set("IsEnabled", !isOn());
        return isTold;
    }));
}

TEST_F(OptIn, IsPutBackByTheRunAfterACrash) {
    std::filesystem::create_directories(state_);
    std::ofstream(record_) << "left by a run that was killed";
    set("IsEnabled", true);
    {
        AtspiOptIn optIn(state_);
        optIn.request();
    }
    EXPECT_FALSE(isOn());
    EXPECT_FALSE(hasRecord());
}

TEST_F(OptIn, StaysForWhomeverElseWantsIt) {
    const auto use = [this](const std::function<void()>& meanwhile) {
        AtspiOptIn optIn(state_);
        optIn.request();
        ASSERT_TRUE(comesOn());
        meanwhile();
    };
    set("IsEnabled", true);
    use([] {});
    EXPECT_TRUE(isOn()) << "it was on before";
    set("IsEnabled", false);
    use([this] {
        set("IsEnabled", false);
        set("IsEnabled", true);
    });
    EXPECT_TRUE(isOn()) << "another program switched it on again";
    EXPECT_FALSE(hasRecord());
    set("IsEnabled", false);
    use([this] { set("ScreenReaderEnabled", true); });
    EXPECT_TRUE(isOn()) << "a screen reader needs it";
    EXPECT_FALSE(hasRecord());
}

TEST_F(OptIn, IsHandedOverToANewerCopyOfTheProgram) {
    auto older = std::make_unique<AtspiOptIn>(state_);
    older->request();
    ASSERT_TRUE(comesOn());
    AtspiOptIn newer(state_);
    newer.request();
    older.reset();
    EXPECT_TRUE(real::waitUntil([&] {
        newer.request();
        return isOn();
    }));
    EXPECT_TRUE(hasRecord());
}

TEST_F(OptIn, WithoutAPlaceForTheRecordNothingIsSwitched) {
    std::ofstream(state_) << "a file where the directory should be";
    {
        AtspiOptIn optIn(state_);
        optIn.request();
    }
    EXPECT_FALSE(isOn());
}

TEST_F(OptIn, WithoutADescriptorToEndOnNothingIsSwitched) {
    rlimit usual{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &usual), 0);
    const rlimit none{0, usual.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    {
        AtspiOptIn optIn(state_);
        ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &usual), 0);
        optIn.request();
    }
    EXPECT_FALSE(isOn());
    EXPECT_FALSE(hasRecord());
}

} // namespace
} // namespace kelvora
