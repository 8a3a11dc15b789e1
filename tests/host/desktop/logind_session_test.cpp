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

/// The part of logind that is asked, on a bus of the test's own. It has the sessions "ours" and
/// "another" and takes a caller without a session to belong to "ours".
class FakeLogind {
public:
    explicit FakeLogind(PollLoop& loop)
        : bus_(MainLoopBus::open(MainLoopBus::Which::system, loop)) {
        sd_bus_add_fallback(bus_->handle(), nullptr, manager, onCall, this);
        sd_bus_request_name_async(bus_->handle(), nullptr, "org.freedesktop.login1", 0, onName,
                                  this);
        bus_->update();
        isReady_ = turnUntil(loop, [this] { return isReady_; });
    }

    bool isLocked = false; ///< the sessions' LockedHint, when asked
    int asked = 0;         ///< how often all properties of a session were read

    void prepareForSleep(bool isAboutToSleep) {
        emit(manager, "org.freedesktop.login1.Manager", "PrepareForSleep", "b",
             isAboutToSleep ? 1 : 0);
    }
    void change(const char* session, const char* interface, const char* property, bool value) {
        emit(session, "org.freedesktop.DBus.Properties", "PropertiesChanged", "sa{sv}as", interface,
             2, "IdleHint", "b", 1, property, "b", value ? 1 : 0, 0);
    }
    template <typename... Arguments>
    void emit(const char* path, const char* interface, const char* signal, const char* types,
              Arguments... arguments) {
        sd_bus_emit_signal(bus_->handle(), path, interface, signal, types, arguments...);
        bus_->update();
    }

private:
    static int onName(sd_bus_message*, void* data, sd_bus_error*) {
        static_cast<FakeLogind*>(data)->isReady_ = true;
        return 0;
    }
    static int onCall(sd_bus_message* message, void* data, sd_bus_error*) {
        auto& self = *static_cast<FakeLogind*>(data);
        const std::string_view member = sd_bus_message_get_member(message);
        const std::string_view path = sd_bus_message_get_path(message);
        const char* argument = "";
        sd_bus_message_read(message, "s", &argument);
        if (member == "GetSession" && argument != std::string_view("ours"))
            return sd_bus_reply_method_errorf(message, "org.freedesktop.login1.NoSuchSession", "?");
        if (member == "GetSession")
            return sd_bus_reply_method_return(message, "o", ours);
        if (member == "Get" && path.ends_with("/auto"))
            return sd_bus_reply_method_return(message, "v", "s", "ours");
        if (member != "GetAll" || path != ours)
            return 0;
        ++self.asked;
        return sd_bus_reply_method_return(message, "a{sv}", 3, "Id", "s", "ours", "LockedHint", "b",
                                          self.isLocked ? 1 : 0, "Active", "b", 1);
    }

    std::unique_ptr<MainLoopBus> bus_;
    bool isReady_ = false;
};

class LogindSessionTest : public testing::Test {
protected:
    void follow(SessionEvents& session) {
        session.setOnWake([this] { told_ += "wake "; });
        session.setOnBecameActive([this] { told_ += "active "; });
        session.setOnResignedActive([this] { told_ += "resigned "; });
    }
    /// All that was told since the last call, up to the end of a sleep, which the fake ends now.
    std::string told(FakeLogind& logind) {
        logind.prepareForSleep(false);
        EXPECT_TRUE(turnUntil(loop_, [this] { return told_.ends_with("wake "); }));
        return std::exchange(told_, {});
    }

    PrivateBus bus_;
    PollLoop loop_;
    std::string told_;
};

TEST_F(LogindSessionTest, TellsWhatConcernsThisSession) {
    FakeLogind logind(loop_);
    LogindSession session(loop_, "ours");
    follow(session);
    ASSERT_TRUE(turnUntil(loop_, [&] { return logind.asked == 1; }));
    ASSERT_EQ(told(logind), "wake ");

    logind.prepareForSleep(true);
    EXPECT_EQ(told(logind), "wake ");

    const struct {
        const char* name;
        const char* session;
        const char* interface;
        const char* property;
        bool value;
        std::string_view expected;
        bool isActive;
    } changes[] = {
        {"switched away", ours, sessionInterface, "Active", false, "resigned wake ", false},
        {"told again", ours, sessionInterface, "Active", false, "wake ", false},
        {"locked meanwhile", ours, sessionInterface, "LockedHint", true, "wake ", false},
        {"back, but locked", ours, sessionInterface, "Active", true, "wake ", false},
        {"unlocked", ours, sessionInterface, "LockedHint", false, "active wake ", true},
        {"another session", another, sessionInterface, "Active", false, "wake ", true},
        {"another interface", ours, "org.example.Session", "Active", false, "wake ", true},
        {"another property", ours, sessionInterface, "Remote", false, "wake ", true},
        {"locked", ours, sessionInterface, "LockedHint", true, "resigned wake ", false},
        {"unlocked again", ours, sessionInterface, "LockedHint", false, "active wake ", true},
    };
    for (const auto& c : changes) {
        logind.change(c.session, c.interface, c.property, c.value);
        EXPECT_EQ(told(logind), c.expected) << c.name;
        EXPECT_EQ(session.isActive(), c.isActive) << c.name;
    }

    // A locker that only follows requests, twice: the second must count like the first.
    for (int i = 0; i < 2; ++i) {
        logind.emit(ours, sessionInterface, "Lock", "");
        EXPECT_EQ(told(logind), "resigned wake ");
    }
    logind.emit(another, sessionInterface, "Unlock", "");
    logind.emit(ours, sessionInterface, "Unlock", "");
    EXPECT_EQ(told(logind), "active wake ");

    logind.emit(ours, "org.freedesktop.DBus.Properties", "PropertiesChanged", "sa{sv}as",
                sessionInterface, 1, "Active", "s", "of another type", 0);
    logind.emit(ours, "org.freedesktop.DBus.Properties", "PropertiesChanged", "u", 1);
    logind.emit(manager, "org.freedesktop.login1.Manager", "PrepareForSleep", "s", "x");
    EXPECT_EQ(told(logind), "wake ");
    EXPECT_TRUE(session.isActive());
}

TEST_F(LogindSessionTest, FindsTheSession) {
    FakeLogind logind(loop_);
    logind.isLocked = true;
    for (const char* id : {"ours", "", "of-an-earlier-login"}) {
        LogindSession session(loop_, id);
        follow(session);
        EXPECT_TRUE(turnUntil(loop_, [&] { return !session.isActive(); })) << id;
        EXPECT_EQ(told(logind), "resigned wake ") << id;
    }
}

TEST_F(LogindSessionTest, WorksWithoutLogind) {
    LogindSession early(loop_, ""); // a bus without logind, which comes later
    FakeLogind logind(loop_);
    follow(early);
    EXPECT_EQ(told(logind), "wake ");
    EXPECT_TRUE(early.isActive());

    const ScopedVariable noBus("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere");
    LogindSession alone(loop_, "ours");
    EXPECT_TRUE(alone.isActive());
}

} // namespace
} // namespace kelvora
