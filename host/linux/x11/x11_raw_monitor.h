// SPDX-License-Identifier: MIT
#pragma once

#include "host/event_source.h"
#include "host/linux/event_loop.h"
#include "host/linux/timed_secure_entry_gate.h"
#include "host/linux/x11/x11_connection.h"
#include "host/linux/x11/x11_keymap.h"
#include "host/linux/x11/x11_time.h"
#include "host/linux/xkb/key_interpreter.h"

#include <memory>

namespace kelvora {

/// XInput2 raw key events of all master keyboards: presses without repeats, and nobody's marks.
/// What is typed into a password field is not delivered.
class X11RawMonitor : public EventMonitor {
public:
    /// Null when the server lacks XInput 2 or XKB, or cannot be reached.
    [[nodiscard]] static std::unique_ptr<X11RawMonitor> create(const char* display, EventLoop& loop,
                                                               SecureEntry* secureEntry,
                                                               EventMask mask,
                                                               EventHandler handler);

private:
    X11RawMonitor(XcbConnectionPtr connection, std::unique_ptr<X11Keymap> keymap, EventLoop& loop,
                  SecureEntry* secureEntry, EventMask mask, EventHandler handler);

    void processEvents();
    void deliver(const xcb_generic_event_t* event);

    EventMask mask_;
    EventHandler handler_;
    TimedSecureEntryGate gate_;
    XcbConnectionPtr connection_;
    std::unique_ptr<X11Keymap> keymap_;
    KeyInterpreter interpreter_{nullptr};
    X11Time time_;
    std::uint8_t extension_ = 0;
    std::unique_ptr<DescriptorWatch> watch_;
};

} // namespace kelvora
