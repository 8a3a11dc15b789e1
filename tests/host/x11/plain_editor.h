// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/x11/x11_connection.h"

#include <xkbcommon/xkbcommon.h>

#include <atomic>
#include <mutex>
#include <string>
#include <thread>

namespace kelvora {

/// A window that keeps what is typed into it, decoding keys as a toolkit does: with the keymap that
/// it has when it comes to the key. A thread of its own.
class PlainEditor {
public:
    explicit PlainEditor(const std::string& display);
    ~PlainEditor();

    void focus();
    /// Takes the keyboard as an open menu does, whoever has the focus, and gives it back.
    void grabKeyboard();
    void ungrabKeyboard();
    [[nodiscard]] xcb_window_t window() const { return window_; }
    [[nodiscard]] std::u16string text();
    /// The keysyms and modifiers of shortcuts and cursor keys, such as "4+c" for Control-C.
    [[nodiscard]] std::string commands();

private:
    void awaitServer();
    void serve();
    void handleKey(xkb_state* state, const xcb_key_press_event_t& event);

    XcbConnectionPtr connection_;
    xcb_window_t window_;
    std::mutex mutex_;
    std::u16string text_;
    std::string commands_;
    std::atomic<bool> isEnding_ = false;
    std::thread thread_;
};

} // namespace kelvora
