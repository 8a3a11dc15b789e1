// SPDX-License-Identifier: MIT
#pragma once

#include "core/text/encoding.h"
#include "host/linux/x11/x11_keymap.h"

#include <poll.h>
#include <xkbcommon/xkbcommon-keysyms.h>

#include <array>
#include <atomic>
#include <mutex>
#include <string>
#include <thread>

namespace kelvora {

/// A window that keeps what is typed into it, decoding keys as a toolkit does: with the keymap that
/// it has when it comes to the key. A thread of its own.
class PlainEditor {
public:
    explicit PlainEditor(const std::string& display) : connection_(connectX11(display.c_str())) {
        const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(x())).data;
        const std::uint32_t events = XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        xcb_create_window(x(), screen->root_depth, window_, screen->root, 0, 0, 200, 100, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, XCB_CW_EVENT_MASK,
                          &events);
        xcb_change_property(x(), XCB_PROP_MODE_REPLACE, window_, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING,
                            8, 12, "plain\0Plain");
        xcb_map_window(x(), window_);
        xcb_flush(x());
        // The server takes a focus only for a window that can be seen.
        while (const XcbPtr<xcb_generic_event_t> event{xcb_wait_for_event(x())})
            if ((event->response_type & 0x7F) == XCB_MAP_NOTIFY)
                break;
        thread_ = std::thread([this] { serve(); });
    }
    ~PlainEditor() {
        isEnding_ = true;
        thread_.join();
    }

    void focus() {
        xcb_set_input_focus(x(), XCB_INPUT_FOCUS_PARENT, window_, XCB_CURRENT_TIME);
        awaitServer();
    }
    /// Takes the keyboard as an open menu does, whoever has the focus, and gives it back.
    void grabKeyboard() {
        xcb_grab_keyboard_unchecked(x(), 0, window_, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC,
                                    XCB_GRAB_MODE_ASYNC);
        awaitServer();
    }
    void ungrabKeyboard() {
        xcb_ungrab_keyboard(x(), XCB_CURRENT_TIME);
        awaitServer();
    }
    [[nodiscard]] std::u16string text() {
        const std::lock_guard lock(mutex_);
        return text_;
    }
    /// The keysyms and modifiers of shortcuts and cursor keys, such as "4+c" for Control-C.
    [[nodiscard]] std::string commands() {
        const std::lock_guard lock(mutex_);
        return commands_;
    }

private:
    [[nodiscard]] xcb_connection_t* x() const { return connection_.get(); }
    void awaitServer() {
        const XcbPtr<xcb_get_input_focus_reply_t> answer(
            xcb_get_input_focus_reply(x(), xcb_get_input_focus(x()), nullptr));
    }
    void serve() {
        constexpr int longestWait = 20; // milliseconds
        const auto keymap = X11Keymap::create(x());
        while (!isEnding_ && xcb_connection_has_error(x()) == 0) {
            while (const XcbPtr<xcb_generic_event_t> event{xcb_poll_for_event(x())})
                if (!keymap->handleEvent(event.get()) &&
                    (event->response_type & 0x7F) == XCB_KEY_PRESS)
                    handleKey(keymap->keymap(),
                              *reinterpret_cast<xcb_key_press_event_t*>(event.get()));
            pollfd descriptor{xcb_get_file_descriptor(x()), POLLIN, 0};
            poll(&descriptor, 1, longestWait);
        }
    }
    void handleKey(xkb_keymap* keymap, const xcb_key_press_event_t& event) {
        constexpr std::uint16_t commandModifiers = 4 | 8; // Control, Alt
        const XkbStatePtr state(xkb_state_new(keymap));
        xkb_state_update_mask(state.get(), event.state & 0xFFU, 0, 0, 0, 0,
                              (event.state >> 13U) & 3U);
        const xkb_keysym_t keysym = xkb_state_key_get_one_sym(state.get(), event.detail);
        std::array<char, 16> utf8{};
        const int length =
            xkb_state_key_get_utf8(state.get(), event.detail, utf8.data(), utf8.size());
        const std::lock_guard lock(mutex_);
        if (keysym == XKB_KEY_BackSpace) {
            text_.resize(text_.size() - (text_.empty() ? 0 : 1));
        } else if ((event.state & commandModifiers) != 0 ||
                   (keysym >= XKB_KEY_Home && keysym <= XKB_KEY_Begin)) {
            xkb_keysym_get_name(keysym, utf8.data(), utf8.size());
            commands_ += std::to_string(event.state & 0xFFU) + "+" + utf8.data() + " ";
        } else if (length > 0) {
            text_ += toUtf16({utf8.data(), static_cast<std::size_t>(length)});
        }
    }

    XcbConnectionPtr connection_;
    xcb_window_t window_ = xcb_generate_id(connection_.get());
    std::mutex mutex_;
    std::u16string text_;
    std::string commands_;
    std::atomic<bool> isEnding_ = false;
    std::thread thread_;
};

} // namespace kelvora
