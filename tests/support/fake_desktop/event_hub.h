// SPDX-License-Identifier: MIT
#pragma once

#include "host/event_source.h"
#include "tests/support/fake_desktop/scheduler.h"

#include <functional>
#include <map>

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
    void emit(const InputEvent& event);
    /// Runs `notice` on the main thread, in order with the events.
    void inOrder(std::function<void()> notice);
    /// The desktop switches the tap off and says so by `notice`.
    void switchTapOff(EventType notice);

    [[nodiscard]] std::size_t tapCount() const { return taps_.size(); }
    [[nodiscard]] std::size_t monitorCount() const { return global_.size() + local_.size(); }

    [[nodiscard]] std::unique_ptr<EventTap> createTap(EventMask mask,
                                                      EventHandler handler) override;
    [[nodiscard]] std::unique_ptr<EventMonitor> addGlobalMonitor(EventMask mask,
                                                                 EventHandler handler) override;
    [[nodiscard]] std::unique_ptr<EventMonitor> addLocalMonitor(EventMask mask,
                                                                EventHandler handler) override;

private:
    struct Listener {
        EventMask mask = 0;
        EventHandler handler;
        bool enabled = true;
    };
    using Listeners = std::map<int, Listener>;
    class Tap;
    class Monitor;

    static void deliver(const Listeners& listeners, const InputEvent& event);
    [[nodiscard]] std::unique_ptr<EventMonitor> addMonitor(Listeners& listeners, EventMask mask,
                                                           EventHandler handler);

    Scheduler& scheduler_;
    Listeners taps_;
    Listeners global_;
    Listeners local_;
    int nextID_ = 0;
};

} // namespace kelvora::fake
