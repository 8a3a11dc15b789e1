// SPDX-License-Identifier: MIT
#include "tests/support/fake_desktop/event_hub.h"

#include <utility>

namespace kelvora::fake {

class EventHub::Tap final : public EventTap {
public:
    Tap(EventHub& hub, int id) : hub_(hub), id_(id) {}
    ~Tap() override { hub_.taps_.erase(id_); }

    void setEnabled(bool enabled) override {
        hub_.taps_.at(id_).enabled = enabled && hub_.tapSupport != TapSupport::cannotBeEnabled;
    }
    [[nodiscard]] bool isEnabled() const override { return hub_.taps_.at(id_).enabled; }

private:
    EventHub& hub_;
    int id_;
};

class EventHub::Monitor final : public EventMonitor {
public:
    Monitor(Listeners& listeners, int id) : listeners_(listeners), id_(id) {}
    ~Monitor() override { listeners_.erase(id_); }

private:
    Listeners& listeners_;
    int id_;
};

void EventHub::emit(const InputEvent& event) {
    inOrder([this, event] {
        deliver(taps_, event);
        deliver(ownWindowHasFocus ? local_ : global_, event);
    });
}

void EventHub::inOrder(std::function<void()> notice) {
    scheduler_.at(lag, std::move(notice));
}

void EventHub::switchTapOff(EventType notice) {
    for (auto& [id, tap] : taps_) {
        tap.enabled = false;
        tap.handler({.type = notice, .text = {}});
    }
}

void EventHub::deliver(const Listeners& listeners, const InputEvent& event) {
    // By copy: a handler may remove listeners, itself included.
    for (const auto& [id, listener] : Listeners(listeners)) {
        if (listeners.contains(id) && listener.enabled &&
            (listener.mask & eventMaskBit(event.type)) != 0) {
            listener.handler(event);
        }
    }
}

std::unique_ptr<EventTap> EventHub::createTap(EventMask mask, EventHandler handler) {
    if (tapSupport == TapSupport::refused) {
        return nullptr;
    }
    taps_[++nextID_] = {mask, std::move(handler), false};
    return std::make_unique<Tap>(*this, nextID_);
}

std::unique_ptr<EventMonitor> EventHub::addGlobalMonitor(EventMask mask, EventHandler handler) {
    return hasGlobalMonitors ? addMonitor(global_, mask, std::move(handler)) : nullptr;
}

std::unique_ptr<EventMonitor> EventHub::addLocalMonitor(EventMask mask, EventHandler handler) {
    return hasLocalMonitors ? addMonitor(local_, mask, std::move(handler)) : nullptr;
}

std::unique_ptr<EventMonitor> EventHub::addMonitor(Listeners& listeners, EventMask mask,
                                                   EventHandler handler) {
    listeners[++nextID_] = {mask, std::move(handler), true};
    return std::make_unique<Monitor>(listeners, nextID_);
}

} // namespace kelvora::fake
