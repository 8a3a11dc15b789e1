// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_event_source.h"

#include "host/linux/x11/x11_event_tap.h"
#include "host/linux/x11/x11_raw_monitor.h"

namespace kelvora {

X11EventSource::X11EventSource(std::string display, EventLoop& loop, X11PostingMarks& marks,
                               Callbacks callbacks, SecureEntry* secureEntry)
    : display_(std::move(display)), loop_(loop), marks_(marks), callbacks_(std::move(callbacks)),
      secureEntry_(secureEntry) {}

std::unique_ptr<EventTap> X11EventSource::createTap(EventMask mask, EventHandler handler) {
    return X11EventTap::create(display_.c_str(), loop_, marks_, callbacks_, secureEntry_, mask,
                               std::move(handler));
}

std::unique_ptr<EventMonitor> X11EventSource::addGlobalMonitor(EventMask mask,
                                                               EventHandler handler) {
    return X11RawMonitor::create(display_.c_str(), loop_, secureEntry_, mask, std::move(handler));
}

std::unique_ptr<EventMonitor> X11EventSource::addLocalMonitor(EventMask /*mask*/,
                                                              EventHandler /*handler*/) {
    return nullptr;
}

} // namespace kelvora
