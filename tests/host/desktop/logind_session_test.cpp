// SPDX-License-Identifier: MIT
#include "host/linux/desktop/logind_session.h"

#include "tests/host/desktop/private_bus.h"

#include <gtest/gtest.h>
#include <systemd/sd-bus.h>

namespace kelvora {
namespace {

constexpr const char* manager = "/org/freedesktop/login1";
constexpr const char* ours = "/org/freedesktop/login1/session/ours";
constexpr const char* another = "/org/freedesktop/login1/session/another";
constexpr const char* sessionInterface = "org.freedesktop.login1.Session";

/// A part of logind, which has the locked sessions "ours" and "another" and takes a caller without
/// a session to belong to "ours".
int onCall(sd_bus_message* message, void* /*data*/, sd_bus_error* /*error*/) {
    const std::string_view member = sd_bus_message_get_member(message);
    const char* argument = "";
    sd_bus_message_read(message, "s", &argument);
    if (member == "GetSession" && argument != std::string_view("ours"))
        return sd_bus_reply_method_errorf(message, "org.freedesktop.login1.NoSuchSession", "?");
    if (member == "GetSession")
        return sd_bus_reply_method_return(message, "o", ours);
    if (member == "Get")
        return sd_bus_reply_method_return(message, "v", "s", "ours");
    return sd_bus_reply_method_return(message, "a{sv}", 3, "Id", "s", "ours", "LockedHint", "b", 1,
                                      "Active", "b", 1);
}

TEST(LogindSession, TellsWhatConcernsThisSession) {
    const PrivateBus bus;
    PollLoop loop;
    const auto logind = MainLoopBus::open(MainLoopBus::Which::system, loop);
    const LogindSession early(loop, ""); // a bus without logind, which comes later
    EXPECT_FALSE(turnUntil(
        loop, [&] { return early.isLocked(); }, std::chrono::milliseconds(100)));
    sd_bus_add_fallback(logind->handle(), nullptr, manager, onCall, nullptr);
    ASSERT_GE(sd_bus_request_name(logind->handle(), "org.freedesktop.login1", 0), 0);
    for (const char* id : {"", "of-an-earlier-login"}) {
        LogindSession session(loop, id);
        EXPECT_TRUE(turnUntil(loop, [&] { return session.isLocked(); })) << id;
    }

    std::string told;
    LogindSession session(loop, "ours");
    session.setOnWake([&] { told += "wake"; });
    session.setOnBecameActive([&] { told += "active "; });
    session.setOnResignedActive([&] { told += "resigned "; });
    EXPECT_TRUE(turnUntil(loop, [&] { return told == "resigned "; }));
    const auto emit = [&](const char* path, const char* interface, const char* signal,
                          const char* types, auto... arguments) {
        sd_bus_emit_signal(logind->handle(), path, interface, signal, types, arguments...);
        logind->update();
    };
    // All that was told since the last call, up to the end of a sleep, which comes now.
    const auto toldSince = [&] {
        for (const int isAboutToSleep : {1, 0})
            emit(manager, "org.freedesktop.login1.Manager", "PrepareForSleep", "b", isAboutToSleep);
        EXPECT_TRUE(turnUntil(loop, [&] { return told.ends_with("wake"); }));
        return std::exchange(told, {});
    };
    EXPECT_EQ(toldSince(), "resigned wake");
    const struct {
        const char *session, *interface, *property;
        int value;
        std::string_view expected;
    } changes[] = {
        {another, sessionInterface, "LockedHint", 0, "wake"},
        {ours, sessionInterface, "LockedHint", 0, "active wake"},
        {ours, sessionInterface, "Active", 0, "resigned wake"},
        {ours, sessionInterface, "Active", 0, "wake"},
        {ours, sessionInterface, "LockedHint", 1, "wake"},
        {ours, sessionInterface, "Active", 1, "wake"}, // back, but locked
        {ours, sessionInterface, "LockedHint", 0, "active wake"},
        {ours, "org.example.Session", "Active", 0, "wake"},
    };
    for (const auto& c : changes) {
        emit(c.session, "org.freedesktop.DBus.Properties", "PropertiesChanged", "sa{sv}as",
             c.interface, 2, "IdleHint", "b", 1, c.property, "b", c.value, 0);
        EXPECT_EQ(toldSince(), c.expected) << c.session << c.property << c.value;
    }
    // A locker that only follows requests, twice: the second must count like the first.
    for (int i = 0; i < 2; ++i) {
        emit(ours, sessionInterface, "Lock", "");
        EXPECT_EQ(toldSince(), "resigned wake");
    }
    emit(another, sessionInterface, "Unlock", "");
    emit(ours, sessionInterface, "Unlock", "");
    EXPECT_EQ(toldSince(), "active wake");
}

} // namespace
} // namespace kelvora
