// SPDX-License-Identifier: MIT
#include "host/linux/desktop/bus_name_instance.h"

#include "host/linux/desktop/application_id.h"

#include <systemd/sd-bus.h>

#include <cstdint>
#include <string_view>
#include <utility>

namespace kelvora {
namespace {

constexpr std::string_view category = "Launch"; // of the log lines
constexpr const char* busDriver = "org.freedesktop.DBus";
constexpr std::uint32_t primaryOwner = 1; // DBUS_REQUEST_NAME_REPLY_PRIMARY_OWNER

BusNameInstance& instanceOf(void* data) {
    return *static_cast<BusNameInstance*>(data);
}

} // namespace

struct BusNameInstance::Callbacks {
    static int onNameReply(sd_bus_message* message, void* data, sd_bus_error* error);
    static int onMessage(sd_bus_message* message, void* data, sd_bus_error* error);
    static int onActivate(sd_bus_message* message, void* data, sd_bus_error* error);

    static const sd_bus_vtable applicationInterface[];
};

const sd_bus_vtable BusNameInstance::Callbacks::applicationInterface[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("Activate", "a{sv}", "", onActivate, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

void BusNameInstance::claim() {
    bus_ = MainLoopBus::open(MainLoopBus::Which::session, loop_);
    if (!bus_) {
        logNoBus();
        return;
    }
    bus_->setOnLost([this] { logNoBus(); });
    sd_bus* const bus = bus_->handle();
    sd_bus_add_filter(bus, nullptr, Callbacks::onMessage, this);
    sd_bus_add_object_vtable(bus, nullptr, applicationObjectPath, "org.freedesktop.Application",
                             Callbacks::applicationInterface, this);
    // Without SD_BUS_NAME_QUEUE: a copy that was replaced does not wait to come back.
    sd_bus_request_name_async(bus, nullptr, applicationId,
                              SD_BUS_NAME_ALLOW_REPLACEMENT | SD_BUS_NAME_REPLACE_EXISTING,
                              Callbacks::onNameReply, this);
    bus_->update();
}

int BusNameInstance::Callbacks::onNameReply(sd_bus_message* message, void* data, sd_bus_error*) {
    BusNameInstance& self = instanceOf(data);
    self.bus_->setOnLost(nullptr); // from now on that is the session's end
    std::uint32_t result = 0;
    if (sd_bus_message_is_method_error(message, nullptr) != 0 ||
        sd_bus_message_read(message, "u", &result) < 0) {
        self.logNoBus();
        return 0;
    }
    self.isOwner_ = result == primaryOwner;
    if (!self.isOwner_)
        self.log_.write(LogLevel::error, category,
                        "Another program keeps Kelvora's name on the session bus: a second copy "
                        "would not be noticed.");
    return 0;
}

int BusNameInstance::Callbacks::onMessage(sd_bus_message* message, void* data, sd_bus_error*) {
    BusNameInstance& self = instanceOf(data);
    const char* const sender = sd_bus_message_get_sender(message);
    const char* name = nullptr;
    // Anybody can send a signal of that name; only the bus sends it under this one.
    if (sd_bus_message_is_signal(message, busDriver, "NameLost") > 0 && sender != nullptr &&
        std::string_view(sender) == busDriver && sd_bus_message_read(message, "s", &name) >= 0 &&
        std::string_view(name) == applicationId && std::exchange(self.isOwner_, false) &&
        self.onReplaced_)
        self.onReplaced_();
    return 0;
}

int BusNameInstance::Callbacks::onActivate(sd_bus_message* message, void* data, sd_bus_error*) {
    sd_bus_reply_method_return(message, nullptr);
    if (const auto& onReopen = instanceOf(data).onReopen_)
        onReopen();
    return 1;
}

void BusNameInstance::logNoBus() {
    log_.write(LogLevel::info, category,
               "No session bus: a second copy of Kelvora would not be noticed.");
}

} // namespace kelvora
