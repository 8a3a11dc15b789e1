// SPDX-License-Identifier: MIT
#include "host/linux/desktop/logind_session.h"

#include <systemd/sd-bus.h>

#include <string_view>
#include <utility>

namespace kelvora {
namespace {

constexpr const char* service = "org.freedesktop.login1";
constexpr const char* managerPath = "/org/freedesktop/login1";
constexpr const char* managerInterface = "org.freedesktop.login1.Manager";
constexpr const char* ownSessionPath = "/org/freedesktop/login1/session/auto";
constexpr const char* sessionInterface = "org.freedesktop.login1.Session";
constexpr const char* propertiesInterface = "org.freedesktop.DBus.Properties";

LogindSession& sessionOf(void* data) {
    return *static_cast<LogindSession*>(data);
}

void call(const std::function<void()>& handler) {
    if (handler)
        handler();
}

} // namespace

struct LogindSession::Callbacks {
    static int onPrepareForSleep(sd_bus_message* message, void* data, sd_bus_error* error);
    static int onOwnSessionId(sd_bus_message* message, void* data, sd_bus_error* error);
    static int onSessionPath(sd_bus_message* message, void* data, sd_bus_error* error);
    static int onProperties(sd_bus_message* message, void* data, sd_bus_error* error);
    static int onPropertiesChanged(sd_bus_message* message, void* data, sd_bus_error* error);
    static int onSessionSignal(sd_bus_message* message, void* data, sd_bus_error* error);
};

LogindSession::LogindSession(EventLoop& loop, const std::string& sessionId)
    : bus_(MainLoopBus::open(MainLoopBus::Which::system, loop)) {
    if (!bus_)
        return;
    sd_bus_match_signal_async(bus_->handle(), nullptr, service, managerPath, managerInterface,
                              "PrepareForSleep", Callbacks::onPrepareForSleep, nullptr, this);
    if (sessionId.empty())
        findOwnSession();
    else
        findSession(sessionId.c_str());
    bus_->update();
}

void LogindSession::findOwnSession() {
    isFallback_ = true;
    sd_bus_call_method_async(bus_->handle(), nullptr, service, ownSessionPath, propertiesInterface,
                             "Get", Callbacks::onOwnSessionId, this, "ss", sessionInterface, "Id");
}

void LogindSession::findSession(const char* id) {
    sd_bus_call_method_async(bus_->handle(), nullptr, service, managerPath, managerInterface,
                             "GetSession", Callbacks::onSessionPath, this, "s", id);
}

void LogindSession::watchSession(const char* path) {
    sd_bus* const bus = bus_->handle();
    // The notices first: a change between the two is then at worst told twice.
    sd_bus_match_signal_async(bus, nullptr, service, path, propertiesInterface, "PropertiesChanged",
                              Callbacks::onPropertiesChanged, nullptr, this);
    sd_bus_match_signal_async(bus, nullptr, service, path, sessionInterface, nullptr,
                              Callbacks::onSessionSignal, nullptr, this);
    sd_bus_call_method_async(bus, nullptr, service, path, propertiesInterface, "GetAll",
                             Callbacks::onProperties, this, "s", sessionInterface);
}

int LogindSession::Callbacks::onPrepareForSleep(sd_bus_message* message, void* data,
                                                sd_bus_error*) {
    int isAboutToSleep = 1;
    if (sd_bus_message_read(message, "b", &isAboutToSleep) >= 0 && isAboutToSleep == 0)
        call(sessionOf(data).onWake_);
    return 0;
}

int LogindSession::Callbacks::onOwnSessionId(sd_bus_message* message, void* data, sd_bus_error*) {
    const char* id = nullptr;
    if (sd_bus_message_is_method_error(message, nullptr) == 0 &&
        sd_bus_message_read(message, "v", "s", &id) >= 0)
        sessionOf(data).findSession(id);
    return 0;
}

int LogindSession::Callbacks::onSessionPath(sd_bus_message* message, void* data, sd_bus_error*) {
    LogindSession& self = sessionOf(data);
    const char* path = nullptr;
    if (sd_bus_message_is_method_error(message, nullptr) == 0 &&
        sd_bus_message_read(message, "o", &path) >= 0)
        self.watchSession(path);
    else if (!self.isFallback_)
        self.findOwnSession();
    return 0;
}

int LogindSession::Callbacks::onProperties(sd_bus_message* message, void* data, sd_bus_error*) {
    if (sd_bus_message_is_method_error(message, nullptr) == 0)
        sessionOf(data).readProperties(message);
    return 0;
}

int LogindSession::Callbacks::onPropertiesChanged(sd_bus_message* message, void* data,
                                                  sd_bus_error*) {
    const char* interface = nullptr;
    if (sd_bus_message_read(message, "s", &interface) >= 0 &&
        std::string_view(interface) == sessionInterface)
        sessionOf(data).readProperties(message);
    return 0;
}

int LogindSession::Callbacks::onSessionSignal(sd_bus_message* message, void* data, sd_bus_error*) {
    // Requests to the locker: many do what they say and never set the property.
    if (sd_bus_message_is_signal(message, sessionInterface, "Lock") > 0)
        call(sessionOf(data).onResignedActive_);
    else if (sd_bus_message_is_signal(message, sessionInterface, "Unlock") > 0)
        call(sessionOf(data).onBecameActive_);
    return 0;
}

void LogindSession::readProperties(sd_bus_message* message) {
    if (sd_bus_message_enter_container(message, SD_BUS_TYPE_ARRAY, "{sv}") < 0)
        return;
    while (sd_bus_message_enter_container(message, SD_BUS_TYPE_DICT_ENTRY, "sv") > 0) {
        const char* name = nullptr;
        if (sd_bus_message_read(message, "s", &name) < 0)
            return;
        const bool isActive = std::string_view(name) == "Active";
        if (isActive || std::string_view(name) == "LockedHint") {
            int value = 0;
            if (sd_bus_message_read(message, "v", "b", &value) < 0)
                return;
            (isActive ? isForeground_ : isLocked_) = value != 0;
        } else if (sd_bus_message_skip(message, "v") < 0) {
            return;
        }
        if (sd_bus_message_exit_container(message) < 0)
            return;
    }
    const bool wasActive = std::exchange(isActive_, isForeground_ && !isLocked_);
    if (isActive_ != wasActive)
        call(isActive_ ? onBecameActive_ : onResignedActive_);
}

} // namespace kelvora
