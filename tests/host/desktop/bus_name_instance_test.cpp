// SPDX-License-Identifier: MIT
#include "host/linux/desktop/bus_name_instance.h"

#include "host/linux/desktop/application_id.h"
#include "tests/host/desktop/private_bus.h"
#include "tests/support/fake_desktop/recording_log.h"

#include <gtest/gtest.h>
#include <systemd/sd-bus.h>

#include <optional>

namespace kelvora {
namespace {

struct Copy {
    Copy(PollLoop& loop, LogSink& log) : instance(loop, log) {
        instance.setOnReplaced([this] { ++replaced; });
        instance.setOnReopen([this] { ++reopened; });
        instance.claim();
    }

    BusNameInstance instance;
    int replaced = 0;
    int reopened = 0;
};

TEST(BusNameInstance, OnlyANewerCopyReplacesOne) {
    std::optional<PrivateBus> bus(std::in_place);
    PollLoop loop;
    fake::RecordingLog log;
    Copy copy(loop, log);
    {
        const auto stranger = MainLoopBus::open(MainLoopBus::Which::session, loop);
        // Asked to open until it is, with a forged message of the bus before each time.
        EXPECT_TRUE(turnUntil(loop, [&] {
            sd_bus_message* forged = nullptr;
            sd_bus_message_new_signal(stranger->handle(), &forged, "/org/freedesktop/DBus",
                                      "org.freedesktop.DBus", "NameLost");
            sd_bus_message_append(forged, "s", applicationId);
            sd_bus_message_set_destination(forged, applicationId);
            sd_bus_send(stranger->handle(), forged, nullptr);
            sd_bus_message_unref(forged);
            sd_bus_call_method_async(stranger->handle(), nullptr, applicationId,
                                     applicationObjectPath, "org.freedesktop.Application",
                                     "Activate", nullptr, nullptr, "a{sv}", 0);
            stranger->update();
            return copy.reopened > 1;
        }));
    }
    EXPECT_EQ(copy.replaced, 0);
    Copy newer(loop, log);
    EXPECT_TRUE(turnUntil(loop, [&] { return copy.replaced == 1; }));
    Copy abandoned(loop, log);
    bus.reset(); // before it answers
    EXPECT_TRUE(turnUntil(loop, [&] { return log.lines().size() == 1; }));
    const ScopedVariable noBus("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere");
    Copy alone(loop, log);
    EXPECT_EQ(newer.replaced + abandoned.replaced + alone.replaced, 0);
}

} // namespace
} // namespace kelvora
