// SPDX-License-Identifier: MIT
#pragma once

#include "host/event_source.h"
#include "tests/support/fake_desktop/scheduler.h"

#include <functional>
#include <map>
#include <utility>

namespace kelvora::fake {

/// Shows the session's events to a tap and to monitors, a moment after they happened.
class EventHub final : public EventSource {
public:
    enum class TapSupport { works, refused, cannotBeEnabled };

    /// Seconds from an event to the tap's handler.
    static constexpr double lag = 0.002;

    explicit EventHub(Scheduler& scheduler) : scheduler_(scheduler) {}

    TapSupport tapSupport = TapSupport::works;
    bool hasGlobalMonitors = true;
    bool hasLocalMonitors = false;
    /// The program's own window has the focus: its events are the local monitors' to see.
    bool ownWindowHasFocus = false;

    /// An event of the session.
    void emit(const InputEvent& event) {
        inOrder([this, event] {
            deliver(taps_, event);
            deliver(ownWindowHasFocus ? local_ : global_, event);
        });
    }
    /// Runs `notice` on the main thread, in order with the events.
    void inOrder(std::function<void()> notice) { scheduler_.at(lag, std::move(notice)); }
    /// The desktop switches the tap off and says so by `notice`.
    void switchTapOff(EventType notice) {
        for (auto& [id, tap] : taps_) {
            tap.enabled = false;
            tap.handler({.type = notice, .text = {}});
        }
    }

    [[nodiscard]] std::size_t tapCount() const { return taps_.size(); }
    [[nodiscard]] std::size_t monitorCount() const { return global_.size() + local_.size(); }

    [[nodiscard]] std::unique_ptr<EventTap> createTap(EventMask mask,
                                                      EventHandler handler) override {
        return tapSupport == TapSupport::refused
                   ? nullptr
                   : std::make_unique<Tap>(*this, taps_, Listener{mask, std::move(handler), false});
    }
    [[nodiscard]] std::unique_ptr<EventMonitor> addGlobalMonitor(EventMask mask,
                                                                 EventHandler handler) override {
        return hasGlobalMonitors ? add(global_, {mask, std::move(handler)}) : nullptr;
    }
    [[nodiscard]] std::unique_ptr<EventMonitor> addLocalMonitor(EventMask mask,
                                                                EventHandler handler) override {
        return hasLocalMonitors ? add(local_, {mask, std::move(handler)}) : nullptr;
    }

private:
    struct Listener {
        EventMask mask = 0;
        EventHandler handler;
        bool enabled = true;
    };
    using Listeners = std::map<int, Listener>;

    /// A place among the listeners for as long as the object lives.
    template <typename Interface>
    struct Place : Interface {
        Place(EventHub& owner, Listeners& all, Listener listener)
            : hub(owner), listeners(all), id(++owner.nextID_) {
            listeners[id] = std::move(listener);
        }
        ~Place() override { listeners.erase(id); }
        EventHub& hub;
        Listeners& listeners;
        int id;
    };
    struct Tap final : Place<EventTap> {
        using Place::Place;
        void setEnabled(bool enabled) override {
            listeners.at(id).enabled = enabled && hub.tapSupport != TapSupport::cannotBeEnabled;
        }
        [[nodiscard]] bool isEnabled() const override { return listeners.at(id).enabled; }
    };

    [[nodiscard]] std::unique_ptr<EventMonitor> add(Listeners& listeners, Listener listener) {
        return std::make_unique<Place<EventMonitor>>(*this, listeners, std::move(listener));
    }
    static void deliver(const Listeners& listeners, const InputEvent& event) {
        // By copy: a handler may remove listeners, itself included.
        for (const auto& [id, listener] : Listeners(listeners))
            if (listeners.contains(id) && listener.enabled &&
                (listener.mask & eventMaskBit(event.type)) != 0)
                listener.handler(event);
    }

    Scheduler& scheduler_;
    Listeners taps_, global_, local_;
    int nextID_ = 0;
};

} // namespace kelvora::fake
