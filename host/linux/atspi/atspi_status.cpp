// SPDX-License-Identifier: MIT
#include "host/linux/atspi/atspi_status.h"

#include <systemd/sd-bus.h>

namespace kelvora {

struct AtspiStatus::Callbacks {
    static int onPropertiesChanged(sd_bus_message* /*message*/, void* data,
                                   sd_bus_error* /*error*/) {
        if (const auto& onChanged = static_cast<AtspiStatus*>(data)->onChanged_)
            onChanged();
        return 0;
    }
};

AtspiStatus::AtspiStatus(EventLoop& loop)
    : bus_(MainLoopBus::open(MainLoopBus::Which::session, loop)) {
    if (!bus_)
        return;
    sd_bus_add_match_async(bus_->handle(), nullptr,
                           "type='signal',sender='org.a11y.Bus',path='/org/a11y/bus',"
                           "interface='org.freedesktop.DBus.Properties',"
                           "member='PropertiesChanged',arg0='org.a11y.Status'",
                           Callbacks::onPropertiesChanged, nullptr, this);
    bus_->update();
}

} // namespace kelvora
