// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_focus_watch.h"

#include "host/linux/x11/x11_focus.h"

#include <xcb/xcbext.h>

#include <utility>

namespace kelvora {

X11FocusWatch::X11FocusWatch(xcb_connection_t* connection) : connection_(connection) {}

void X11FocusWatch::start() {
    const XcbPtr<xcb_get_input_focus_reply_t> focus(
        xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
    if (focus)
        setFocus(focus->focus);
    // Where there is no other window to focus, the root or nothing gets it.
    for (auto screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)); screen.rem > 0;
         xcb_screen_next(&screen))
        select(screen.data->root);
    // Last, with its answer everything above is in force. Whoever has the keyboard already did not
    // ask for it while we were listening.
    grab_ = probe_.isKeyboardGrabbed() ? Grab::foreign : Grab::none;
    isTextLast_ = false;
}

X11FocusWatch::Change X11FocusWatch::onFocusEvent(const X11FocusEvent& event) {
    switch (event.mode) {
    case XCB_NOTIFY_MODE_GRAB:
        // RECORD shows the event once for each client that wants it: the first decides.
        if (!event.isIn && grab_ == Grab::none) {
            const std::uint32_t mask = xcb_get_setup(connection_)->resource_id_mask;
            const std::uint32_t client = std::exchange(grabbingClient_, 0);
            const bool isOwn = client != 0 && (event.window & ~mask) == client;
            if (isOwn && isTextLast_) {
                grab_ = Grab::popup;
                return Change::none;
            }
            grab_ = isOwn ? Grab::own : Grab::foreign;
            return Change::grab;
        }
        return Change::none;
    case XCB_NOTIFY_MODE_UNGRAB:
        if (event.isIn && grab_ != Grab::none) {
            const Grab before = std::exchange(grab_, Grab::none);
            askForFocus();
            return before == Grab::popup ? Change::none : Change::grab;
        }
        return Change::none;
    default:
        // The pointer that moves below the focus window changes nothing for the keyboard.
        if (event.detail == XCB_NOTIFY_DETAIL_POINTER)
            return Change::none;
        // Events from within a grab have a mode of their own: one without it says the grab is over,
        // also where the end of the grab itself was told to a window that nobody watches.
        if (event.mode == XCB_NOTIFY_MODE_NORMAL)
            grab_ = Grab::none;
        askForFocus();
        // Between a window and one inside it: the focus stays where it is for a person, unless it
        // is the root that has it now or had it.
        if (!isRoot(event.window) && (event.detail == XCB_NOTIFY_DETAIL_ANCESTOR ||
                                      event.detail == XCB_NOTIFY_DETAIL_VIRTUAL ||
                                      event.detail == XCB_NOTIFY_DETAIL_INFERIOR))
            return Change::none;
        isTextLast_ = false;
        return Change::window;
    }
}

std::uint32_t X11FocusWatch::client() const {
    return followed_ & ~xcb_get_setup(connection_)->resource_id_mask;
}

bool X11FocusWatch::isRoot(xcb_window_t window) const {
    for (auto screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)); screen.rem > 0;
         xcb_screen_next(&screen))
        if (screen.data->root == window)
            return true;
    return false;
}

void X11FocusWatch::processReplies() {
    if (!question_)
        return;
    void* reply = nullptr;
    xcb_generic_error_t* error = nullptr;
    if (xcb_poll_for_reply(connection_, question_->sequence, &reply, &error) == 0)
        return;
    question_.reset();
    const XcbPtr<xcb_get_input_focus_reply_t> focus(
        static_cast<xcb_get_input_focus_reply_t*>(reply));
    const XcbPtr<xcb_generic_error_t> ignored(error);
    if (focus)
        setFocus(focus->focus);
}

void X11FocusWatch::askForFocus() {
    if (question_)
        xcb_discard_reply(connection_, question_->sequence);
    question_ = xcb_get_input_focus(connection_);
    xcb_flush(connection_);
}

bool X11FocusWatch::hasPointerMovedOn() {
    const FocusTarget now = readFocus(connection_).target;
    return std::exchange(underPointer_, now) != now;
}

void X11FocusWatch::setFocus(xcb_window_t window) {
    followsPointer_ = window == XCB_INPUT_FOCUS_POINTER_ROOT || isRoot(window);
    follow(window);
}

void X11FocusWatch::follow(xcb_window_t window) {
    if (window == followed_ || window == XCB_NONE || window == XCB_INPUT_FOCUS_POINTER_ROOT)
        return;
    followed_ = window;
    select(window);
}

void X11FocusWatch::select(xcb_window_t window) {
    // The window may be gone by now; the error that this gives is an event that nobody reads.
    const std::uint32_t events = XCB_EVENT_MASK_FOCUS_CHANGE;
    xcb_change_window_attributes(connection_, window, XCB_CW_EVENT_MASK, &events);
    xcb_flush(connection_);
}

} // namespace kelvora
