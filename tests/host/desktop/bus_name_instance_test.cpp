// SPDX-License-Identifier: MIT
#include "host/linux/desktop/bus_name_instance.h"

#include "host/linux/desktop/application_id.h"
#include "tests/host/desktop/private_bus.h"
#include "tests/support/fake_desktop/recording_log.h"

#include <gtest/gtest.h>
#include <systemd/sd-bus.h>

#include <optional>
#include <string>

namespace kelvora {
namespace {

class Copy {
public:
    Copy(PollLoop& loop, LogSink& log) : instance_(loop, log) {
        instance_.setOnReplaced([this] { ++replaced; });
        instance_.setOnReopen([this] { ++reopened; });
        instance_.claim();
    }

    int replaced = 0;
    int reopened = 0;

private:
    BusNameInstance instance_;
};

/// Another program on the bus.
class Stranger {
public:
    explicit Stranger(PollLoop& loop)
        : loop_(loop), bus_(MainLoopBus::open(MainLoopBus::Which::session, loop)) {}

    [[nodiscard]] sd_bus* bus() const { return bus_->handle(); }

    /// The name that the running copy has on the bus; empty when there is none.
    [[nodiscard]] std::string owner() {
        return call("org.freedesktop.DBus", "/", "org.freedesktop.DBus", "GetNameOwner", "s",
                    applicationId);
    }
    /// The first text of the answer, or "error".
    template <typename... Arguments>
    std::string call(const char* name, const char* path, const char* interface, const char* method,
                     const char* types, Arguments... arguments) {
        reply_.reset();
        sd_bus_call_method_async(bus(), nullptr, name, path, interface, method, onReply, this,
                                 types, arguments...);
        bus_->update();
        return turnUntil(loop_, [this] { return reply_.has_value(); }) ? *reply_ : "no answer";
    }

private:
    static int onReply(sd_bus_message* message, void* data, sd_bus_error*) {
        const char* text = "";
        const bool isError = sd_bus_message_is_method_error(message, nullptr) != 0;
        if (!isError && sd_bus_message_has_signature(message, "s") > 0)
            sd_bus_message_read(message, "s", &text);
        static_cast<Stranger*>(data)->reply_ = isError ? "error" : text;
        return 0;
    }

    PollLoop& loop_;
    std::unique_ptr<MainLoopBus> bus_;
    std::optional<std::string> reply_;
};

class BusNameInstanceTest : public testing::Test {
protected:
    std::optional<PrivateBus> bus_{std::in_place};
    PollLoop loop_;
    fake::RecordingLog log_;
};

TEST_F(BusNameInstanceTest, NewestCopyRunsOn) {
    Stranger observer(loop_);
    Copy first(loop_, log_);
    ASSERT_TRUE(turnUntil(loop_, [&] { return observer.owner() != "error"; }));
    Copy second(loop_, log_);
    ASSERT_TRUE(turnUntil(loop_, [&] { return first.replaced == 1; }));
    {
        Copy third(loop_, log_);
        ASSERT_TRUE(turnUntil(loop_, [&] { return second.replaced == 1; }));
        EXPECT_EQ(third.replaced, 0);
    }
    // With the newest gone nobody runs: those that were replaced do not come back.
    ASSERT_TRUE(turnUntil(loop_, [&] { return observer.owner() == "error"; }));
    EXPECT_EQ(first.replaced, 1);
    EXPECT_EQ(second.replaced, 1);
    EXPECT_TRUE(log_.lines().empty());
}

TEST_F(BusNameInstanceTest, OthersCanReopenAndNothingElse) {
    constexpr const char* interface = "org.freedesktop.Application";
    Stranger stranger(loop_);
    Copy copy(loop_, log_);
    ASSERT_TRUE(turnUntil(loop_, [&] { return stranger.owner() != "error"; }));

    const auto call = [&](const char* path, const char* method, const char* types,
                          auto... arguments) {
        return stranger.call(applicationId, path, interface, method, types, arguments...);
    };
    EXPECT_EQ(call(applicationObjectPath, "Activate", "a{sv}", 0), "");
    EXPECT_EQ(copy.reopened, 1);
    EXPECT_EQ(call(applicationObjectPath, "Activate", "s", "x"), "error");
    EXPECT_EQ(call(applicationObjectPath, "Open", "asa{sv}", 0, 0), "error");
    EXPECT_EQ(call("/", "Activate", "a{sv}", 0), "error");

    sd_bus_message* forged = nullptr;
    sd_bus_message_new_signal(stranger.bus(), &forged, "/org/freedesktop/DBus",
                              "org.freedesktop.DBus", "NameLost");
    sd_bus_message_append(forged, "s", applicationId);
    sd_bus_message_set_destination(forged, stranger.owner().c_str());
    sd_bus_send(stranger.bus(), forged, nullptr);
    sd_bus_message_unref(forged);
    EXPECT_EQ(call(applicationObjectPath, "Activate", "a{sv}", 0), ""); // comes behind the signal
    EXPECT_EQ(copy.reopened, 2);
    EXPECT_EQ(copy.replaced, 0);
}

TEST_F(BusNameInstanceTest, RunsWhereThereIsNoName) {
    Stranger stranger(loop_);
    sd_bus_request_name_async(stranger.bus(), nullptr, applicationId, 0, nullptr, nullptr);
    ASSERT_TRUE(turnUntil(loop_, [&] { return stranger.owner() != "error"; }));
    Copy late(loop_, log_);
    EXPECT_TRUE(turnUntil(loop_, [&] { return log_.lines().size() == 1; }));

    Copy abandoned(loop_, log_);
    bus_.reset(); // before it answers
    EXPECT_TRUE(turnUntil(loop_, [&] { return log_.lines().size() == 2; }));

    const ScopedVariable noBus("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere");
    Copy alone(loop_, log_);
    EXPECT_EQ(log_.lines().size(), 3U);
    EXPECT_EQ(late.replaced + abandoned.replaced + alone.replaced, 0);
}

} // namespace
} // namespace kelvora
