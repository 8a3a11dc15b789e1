// SPDX-License-Identifier: MIT
#pragma once

#include "host/input_event.h"

#include <functional>
#include <memory>

namespace kelvora {

/// Receives events on the main thread. Must not block.
using EventHandler = std::function<void(const InputEvent&)>;

/// A listen-only tap on the session's keyboard and mouse buttons. Main thread only. Destroying it
/// removes it: the handler is not called again.
class EventTap {
public:
    virtual ~EventTap() = default;
    virtual void setEnabled(bool enabled) = 0;
    /// False before the first setEnabled(true), after setEnabled(false), and while the desktop
    /// keeps the tap switched off.
    [[nodiscard]] virtual bool isEnabled() const = 0;
};

/// A registered application-level monitor. Destroying it removes it.
class EventMonitor {
public:
    virtual ~EventMonitor() = default;
};

/// Where the session's events come from. Main thread only.
///
/// What a source delivers: key-downs with repeats, modifier changes as flagsChanged only, any other
/// key never as flagsChanged; mouse buttons but not wheels; nothing at all while the keyboard is
/// not the focused application's to read (another client holds it, secret entry).
class EventSource {
public:
    virtual ~EventSource() = default;

    /// A tap that sees every client's events in their order, each with the mark of its poster. It
    /// starts disabled. Null when the desktop has no such thing or refuses it.
    [[nodiscard]] virtual std::unique_ptr<EventTap> createTap(EventMask mask,
                                                              EventHandler handler) = 0;
    /// A monitor of other applications' events, without marks and without a promise of
    /// completeness. Null when there is none.
    [[nodiscard]] virtual std::unique_ptr<EventMonitor> addGlobalMonitor(EventMask mask,
                                                                         EventHandler handler) = 0;
    /// A monitor of this program's own events. Null where the others see them already.
    [[nodiscard]] virtual std::unique_ptr<EventMonitor> addLocalMonitor(EventMask mask,
                                                                        EventHandler handler) = 0;
};

} // namespace kelvora
