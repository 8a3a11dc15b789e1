// SPDX-License-Identifier: MIT
#include "host/linux/atspi/atspi_opt_in.h"
#include "host/linux/atspi/bus_connection.h"
#include "tests/host/atspi/accessible_desktop.h"
#include "tests/support/real_desktop/wait_until.h"

#include <gtest/gtest.h>

#include <fstream>

namespace kelvora {
namespace {

namespace fs = std::filesystem;

class OptIn : public testing::Test {
protected:
    void set(bool isOn, const char* name = "IsEnabled") {
        ASSERT_EQ(session_->setProperty(status_, "org.a11y.Status", name, isOn), BusError::none);
    }
    bool isOn() {
        const auto reply = session_->property<bool>(status_, "org.a11y.Status", "IsEnabled");
        return reply && reply.value;
    }
    /// A run of the program that asks for it, and whether it is on afterwards.
    bool isOnAfter(const std::function<void()>& meanwhile) {
        {
            AtspiOptIn optIn(state_);
            optIn.request();
            optIn.request();
            meanwhile();
        }
        EXPECT_FALSE(fs::exists(record_));
        return isOn();
    }
    bool comesOn() {
        return real::waitUntil([this] { return isOn(); });
    }

    AccessibleDesktop desktop_;
    const AtspiReference status_{"org.a11y.Bus", "/org/a11y/bus"};
    std::unique_ptr<BusConnection> session_ = BusConnection::openSession();
    fs::path state_ = desktop_.newFile("state");
    fs::path record_ = state_ / "accessibility-was-off";
};

TEST_F(OptIn, IsPutBackUnlessSomebodyElseWantsIt) {
    set(false);
    { const AtspiOptIn optIn(state_); }
    EXPECT_FALSE(isOn()) << "nobody has asked";
    EXPECT_FALSE(isOnAfter([this] {
        EXPECT_TRUE(comesOn());
        EXPECT_TRUE(fs::exists(record_));
    }));
    EXPECT_TRUE(isOnAfter([this] {
        EXPECT_TRUE(comesOn());
        set(false);
        set(true);
    })) << "another program switched it on again";
    EXPECT_TRUE(isOnAfter([] {})) << "it was on before";
    // Left by a run that was killed.
    std::ofstream(record_) << "on";
    EXPECT_FALSE(isOnAfter([] {}));
    EXPECT_TRUE(isOnAfter([this] {
        EXPECT_TRUE(comesOn());
        set(true, "ScreenReaderEnabled");
    }));
}

TEST_F(OptIn, IsHandedOverToANewerCopyOfTheProgram) {
    set(false);
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
}

} // namespace
} // namespace kelvora
