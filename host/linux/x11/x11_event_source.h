// SPDX-License-Identifier: MIT
#pragma once

#include "host/event_source.h"
#include "host/linux/event_loop.h"
#include "host/linux/secure_entry.h"
#include "host/linux/x11/x11_connection.h"
#include "host/linux/x11/x11_posting_marks.h"
#include "host/workspace.h"

#include <functional>
#include <memory>
#include <string>

namespace kelvora {

/// The session's keys and buttons: RECORD as the tap, XInput2 raw events as the global monitor of
/// servers that have no RECORD. Own windows are seen by both, so there is no local monitor.
class X11EventSource : public EventSource {
public:
    struct Callbacks {
        /// Another window has the focus, or the keyboard was taken or given back by a client, or
        /// the focus went into or out of a password field, or to another text without the user's
        /// doing.
        std::function<void(FocusChange)> onFocusChanged;
        /// The server has gone away while something listened to it.
        std::function<void()> onServerGone;
    };

    /// `display` as in DISPLAY. The loop, the marks and the secure entry outlive the source and
    /// what it hands out. Without a secure entry nothing is kept from the handlers.
    X11EventSource(std::string display, EventLoop& loop, X11PostingMarks& marks,
                   Callbacks callbacks, SecureEntry* secureEntry = nullptr);

    [[nodiscard]] std::unique_ptr<EventTap> createTap(EventMask mask,
                                                      EventHandler handler) override;
    [[nodiscard]] std::unique_ptr<EventMonitor> addGlobalMonitor(EventMask mask,
                                                                 EventHandler handler) override;
    [[nodiscard]] std::unique_ptr<EventMonitor> addLocalMonitor(EventMask mask,
                                                                EventHandler handler) override;

private:
    std::string display_;
    EventLoop& loop_;
    X11PostingMarks& marks_;
    Callbacks callbacks_;
    SecureEntry* secureEntry_;
};

} // namespace kelvora
