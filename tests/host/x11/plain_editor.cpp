// SPDX-License-Identifier: MIT
#include "tests/host/x11/plain_editor.h"

#include "core/text/encoding.h"
#include "host/linux/x11/x11_keymap.h"

#include <poll.h>
#include <xkbcommon/xkbcommon-keysyms.h>

#include <array>

namespace kelvora {
namespace {

constexpr std::uint16_t commandModifiers = 4 | 8; // Control, Alt
constexpr int longestWait = 20;                   // milliseconds

} // namespace

PlainEditor::PlainEditor(const std::string& display)
    : connection_(connectX11(display.c_str())), window_(xcb_generate_id(connection_.get())) {
    xcb_connection_t* x = connection_.get();
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(x)).data;
    const std::uint32_t events = XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_create_window(x, screen->root_depth, window_, screen->root, 0, 0, 200, 100, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, XCB_CW_EVENT_MASK,
                      &events);
    constexpr std::string_view name("plain\0Plain\0", 12);
    xcb_change_property(x, XCB_PROP_MODE_REPLACE, window_, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8,
                        static_cast<std::uint32_t>(name.size()), name.data());
    xcb_map_window(x, window_);
    xcb_flush(x);
    // The server takes a focus only for a window that can be seen.
    while (const XcbPtr<xcb_generic_event_t> event{xcb_wait_for_event(x)})
        if ((event->response_type & 0x7F) == XCB_MAP_NOTIFY)
            break;
    thread_ = std::thread([this] { serve(); });
}

PlainEditor::~PlainEditor() {
    isEnding_ = true;
    thread_.join();
}

void PlainEditor::focus() {
    xcb_set_input_focus(connection_.get(), XCB_INPUT_FOCUS_PARENT, window_, XCB_CURRENT_TIME);
    awaitServer();
}

void PlainEditor::awaitServer() {
    const XcbPtr<xcb_get_input_focus_reply_t> answer(xcb_get_input_focus_reply(
        connection_.get(), xcb_get_input_focus(connection_.get()), nullptr));
}

void PlainEditor::grabKeyboard() {
    const XcbPtr<xcb_grab_keyboard_reply_t> reply(
        xcb_grab_keyboard_reply(connection_.get(),
                                xcb_grab_keyboard(connection_.get(), 0, window_, XCB_CURRENT_TIME,
                                                  XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
                                nullptr));
}

void PlainEditor::ungrabKeyboard() {
    xcb_ungrab_keyboard(connection_.get(), XCB_CURRENT_TIME);
    awaitServer();
}

std::u16string PlainEditor::text() {
    const std::lock_guard lock(mutex_);
    return text_;
}

std::string PlainEditor::commands() {
    const std::lock_guard lock(mutex_);
    return commands_;
}

void PlainEditor::serve() {
    const auto keymap = X11Keymap::create(connection_.get());
    while (!isEnding_ && xcb_connection_has_error(connection_.get()) == 0) {
        while (const XcbPtr<xcb_generic_event_t> event{xcb_poll_for_event(connection_.get())}) {
            if (keymap->handleEvent(event.get()) || (event->response_type & 0x7F) != XCB_KEY_PRESS)
                continue;
            const XkbStatePtr state(xkb_state_new(keymap->keymap()));
            handleKey(state.get(), *reinterpret_cast<xcb_key_press_event_t*>(event.get()));
        }
        pollfd descriptor{xcb_get_file_descriptor(connection_.get()), POLLIN, 0};
        poll(&descriptor, 1, longestWait);
    }
}

void PlainEditor::handleKey(xkb_state* state, const xcb_key_press_event_t& event) {
    xkb_state_update_mask(state, event.state & 0xFFU, 0, 0, 0, 0, (event.state >> 13U) & 3U);
    const xkb_keysym_t keysym = xkb_state_key_get_one_sym(state, event.detail);
    std::array<char, 16> utf8{};
    const int length = xkb_state_key_get_utf8(state, event.detail, utf8.data(), utf8.size());
    const std::lock_guard lock(mutex_);
    if (keysym == XKB_KEY_BackSpace) {
        if (!text_.empty())
            text_.pop_back();
    } else if ((event.state & commandModifiers) != 0 ||
               (keysym >= XKB_KEY_Home && keysym <= XKB_KEY_Begin)) {
        xkb_keysym_get_name(keysym, utf8.data(), utf8.size());
        commands_ += std::to_string(event.state & 0xFFU) + "+" + utf8.data() + " ";
    } else if (length > 0) {
        text_ += toUtf16({utf8.data(), static_cast<std::size_t>(length)});
    }
}

} // namespace kelvora
