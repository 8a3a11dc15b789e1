// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_keyboard_hold.h"

#include "host/linux/x11/x11_keymap_copy.h"

#include <sys/uio.h>
#include <xcb/xcbext.h>
#include <xcb/xinput.h>

#include <algorithm>
#include <chrono>
#include <utility>

namespace kelvora {
namespace {

constexpr std::chrono::milliseconds settleLimit{1000};
constexpr std::uint8_t shiftModifier = 1;

struct KeyMask {
    std::uint32_t mask = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_KEY_RELEASE;
};

bool isModifier(const CharacterKeys& keys, std::uint8_t keycode) {
    return std::ranges::any_of(keys.modifierKeys(), [keycode](const ModifierKeycode& key) {
        return key.keycode == keycode;
    });
}

/// A NoOperation with a number in the byte that the protocol leaves unused.
void sendFence(xcb_connection_t* connection, std::uint8_t number) {
    xcb_no_operation_request_t request{.major_opcode = 0, .pad0 = number, .length = 0};
    const xcb_protocol_request_t protocol{
        .count = 1, .ext = nullptr, .opcode = XCB_NO_OPERATION, .isvoid = 1};
    // The library may use the two places before the vector.
    iovec parts[3]{{}, {}, {.iov_base = &request, .iov_len = sizeof request}};
    xcb_send_request(connection, 0, parts + 2, &protocol);
}

} // namespace

X11KeyboardHold::X11KeyboardHold(X11EventPoster& poster, FocusTarget target)
    : poster_(poster), marked_(*poster.marked_), unmarked_(*poster.unmarked_) {
    const std::lock_guard lock(poster_.mutex_);
    unmarked_.setOnOtherEvent([this](const xcb_generic_event_t& event) { addHeldEvent(event); });
    focus_.emplace(marked_, poster_.marks_, target);
    if (!marked_.synchronize())
        return;
    grabKeyboards();
    if (!grabbed_.empty())
        mouse_.emplace(unmarked_.connection(), static_cast<xcb_window_t>(target.id));
    undoStickyKeys();
    releaseWhatIsDown();
    poster_.hold_ = this;
}

X11KeyboardHold::~X11KeyboardHold() {
    const std::lock_guard lock(poster_.mutex_);
    poster_.hold_ = nullptr;
    poster_.keyDown_.reset();
    focus_.reset();
    if (!grabbed_.empty() && unmarked_.synchronize()) {
        pressHeldModifiers();
        replayHeldEvents();
        noteForeignKeymap();
        if (hasForeignKeymap_)
            copyCoreKeymap(poster_.display_.c_str(), grabbed_);
        poster_.hasLent_ = true; // what the user lets go of from here on waits for the lending
        // Between the last look and the end of the grabs only a keyboard itself can press a key, in
        // the time of one answer; another program's keys wait, until the next key is read right.
        unmarked_.grabServer();
        replayHeldEvents();
        ungrabKeyboards();
        replayHeldEvents();
        lendToCarrier();
        returnToUserKeyboard();
        unmarked_.ungrabServer();
        unmarked_.synchronize();
    } else {
        ungrabKeyboards();
    }
    mouse_.reset();
    unmarked_.setOnOtherEvent(nullptr);
    marked_.setCarrier(0);
    unmarked_.setCarrier(0);
    marked_.flush();
    unmarked_.flush();
}

void X11KeyboardHold::grabKeyboards() {
    const std::vector<X11SlaveKeyboard> keyboards = marked_.slaveKeyboards();
    std::uint16_t carrier = 0;
    if (poster_.marks_.userTypesThroughXTest) {
        for (const X11SlaveKeyboard& keyboard : keyboards)
            if (!keyboard.isXTest && carrier == 0)
                carrier = keyboard.id;
        if (carrier == 0) // nothing else to post through
            return;
    }
    for (const X11SlaveKeyboard& keyboard : keyboards) {
        const bool carries = carrier != 0 ? keyboard.id == carrier : keyboard.isXTest;
        if (!carries && !grab(keyboard.id)) {
            ungrabKeyboards();
            replayHeldEvents();
            return;
        }
    }
    const std::uint16_t lastUsed = marked_.lastUsedKeyboard();
    for (const X11SlaveKeyboard& keyboard : keyboards)
        if (keyboard.id == lastUsed)
            userKeyboard_ = keyboard.isXTest ? std::uint16_t{0} : keyboard.id;
    marked_.setCarrier(carrier);
    unmarked_.setCarrier(carrier);
    marked_.useCarrier();
    marked_.announceState();
    // Using the carrier gave the core keyboard its keymap: what changes from here on is news.
    acceptKeymap();
}

void X11KeyboardHold::returnToUserKeyboard() {
    if (!userKeyboard_)
        return;
    unmarked_.setCarrier(*userKeyboard_);
    unmarked_.useCarrier();
    unmarked_.announceState();
}

bool X11KeyboardHold::grab(std::uint16_t deviceId) {
    const KeyMask mask;
    xcb_connection_t* const connection = unmarked_.connection();
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const XcbPtr<xcb_input_xi_grab_device_reply_t> reply(xcb_input_xi_grab_device_reply(
        connection,
        xcb_input_xi_grab_device(connection, root, XCB_CURRENT_TIME, XCB_NONE, deviceId,
                                 XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_MODE_22_ASYNC, 0, 1,
                                 &mask.mask),
        nullptr));
    if (!reply || reply->status != XCB_GRAB_STATUS_SUCCESS)
        return false;
    grabbed_.push_back(deviceId);
    return true;
}

void X11KeyboardHold::ungrabKeyboards() {
    for (const std::uint16_t device : grabbed_)
        xcb_input_xi_ungrab_device(unmarked_.connection(), XCB_CURRENT_TIME, device);
    if (!grabbed_.empty())
        unmarked_.synchronize();
    grabbed_.clear();
}

void X11KeyboardHold::releaseWhatIsDown() {
    // Held modifiers would change what is posted, and a held key would go on repeating; their
    // coming up is seen by us alone from now on.
    const X11KeySet down = marked_.keysDown();
    X11KeySet released = down;
    // The core keyboard forgets a key that is down on two devices when one of them lets go of it.
    // Pressed on the other once more, it would not go down, and a shortcut would type its letter.
    const std::uint16_t carrier = marked_.carrier();
    for (const X11SlaveKeyboard& keyboard : marked_.slaveKeyboards())
        if (carrier != 0 ? keyboard.id == carrier : keyboard.isXTest)
            released |= marked_.keysDownOn(keyboard.id);
    for (std::size_t key = 0; key < released.size(); ++key)
        if (released[key])
            marked_.releaseKey(static_cast<std::uint8_t>(key));
    if (!grabbed_.empty())
        downBefore_ = down;
    marked_.synchronize();
}

void X11KeyboardHold::undoStickyKeys() {
    // There the trigger itself has locked Shift.
    const X11KeyboardState& state = marked_.state();
    const auto sticky = static_cast<std::uint8_t>(state.lockedModifiers | state.latchedModifiers);
    if ((sticky & shiftModifier) != 0 && marked_.isStickyKeysOn())
        marked_.lockModifiers(shiftModifier, 0);
}

bool X11KeyboardHold::settle() {
    if (!poster_.marks_.hasTap) // nothing is recorded
        return true;
    const std::uint8_t fence = poster_.marks_.nextFence();
    {
        const std::lock_guard lock(poster_.mutex_);
        sendFence(marked_.connection(), fence);
        // RECORD keeps what it has until the server writes to some client: an answer makes it
        // write.
        static_cast<void>(marked_.synchronize());
    }
    return poster_.marks_.waitForFence(fence, settleLimit);
}

bool X11KeyboardHold::hasFocus() {
    const std::lock_guard lock(poster_.mutex_);
    return focus_->hasFocus();
}

bool X11KeyboardHold::hasHeldKeys() {
    const std::lock_guard lock(poster_.mutex_);
    if (grabbed_.empty())
        return false;
    unmarked_.synchronize();
    return std::ranges::any_of(events_, [&](const HeldEvent& event) {
        return (event.kind == HeldKind::press || event.kind == HeldKind::repeat) &&
               !isModifier(unmarked_.keys(), event.keycode);
    });
}

bool X11KeyboardHold::hasFailed() {
    const std::lock_guard lock(poster_.mutex_);
    return focus_->hasFailed();
}

bool X11KeyboardHold::post(X11KeyboardControl& control, const std::function<void()>& send) {
    return focus_->post(control, send);
}

void X11KeyboardHold::noteForeignKeymap() {
    marked_.synchronize();
    hasForeignKeymap_ = hasForeignKeymap_ || marked_.keymapVersion() != keymapVersion_;
}

void X11KeyboardHold::acceptKeymap() {
    marked_.synchronize();
    static_cast<void>(marked_.keys());
    keymapVersion_ = marked_.keymapVersion();
}

void X11KeyboardHold::addHeldEvent(const xcb_generic_event_t& event) {
    const auto* xinput = xcb_get_extension_data(unmarked_.connection(), &xcb_input_id);
    if ((event.response_type & 0x7F) == XCB_BUTTON_PRESS)
        events_.push_back({HeldKind::click, 0});
    const auto& key = reinterpret_cast<const xcb_input_key_press_event_t&>(event);
    if ((event.response_type & 0x7F) != XCB_GE_GENERIC || key.extension != xinput->major_opcode ||
        (key.event_type != XCB_INPUT_KEY_PRESS && key.event_type != XCB_INPUT_KEY_RELEASE) ||
        key.detail > 255)
        return;
    const bool isRepeat = (key.flags & XCB_INPUT_KEY_EVENT_FLAGS_KEY_REPEAT) != 0;
    const HeldKind kind = key.event_type == XCB_INPUT_KEY_RELEASE ? HeldKind::release
                          : isRepeat                              ? HeldKind::repeat
                                                                  : HeldKind::press;
    events_.push_back({kind, static_cast<std::uint8_t>(key.detail)});
}

void X11KeyboardHold::replayHeldEvents() {
    unmarked_.synchronize();
    for (const HeldEvent& event : std::exchange(events_, {})) {
        if (event.kind == HeldKind::click) {
            unmarked_.synchronize(); // behind the keys that were pressed before it
            mouse_->replay();
            continue;
        }
        if (event.kind == HeldKind::release) {
            down_.reset(event.keycode);
            std::erase_if(poster_.lent_,
                          [&](const auto& lent) { return lent.keycode == event.keycode; });
            unmarked_.releaseKey(event.keycode);
            continue;
        }
        if (isModifier(unmarked_.keys(), event.keycode)) {
            if (event.kind == HeldKind::press) {
                unmarked_.pressKey(event.keycode);
                down_.set(event.keycode);
            }
            continue;
        }
        // Let go of at once: when its real key comes up after the hold, nothing is left to undo.
        unmarked_.pressKey(event.keycode);
        unmarked_.releaseKey(event.keycode);
    }
    unmarked_.flush();
}

void X11KeyboardHold::pressHeldModifiers() {
    // Marked: the program has not been told that they came up, and must not be told that they go
    // down again.
    for (std::size_t index = 0; index < downBefore_.size(); ++index) {
        const auto key = static_cast<std::uint8_t>(index);
        if (!downBefore_[key] || !isModifier(marked_.keys(), key))
            continue;
        marked_.pressKey(key);
        down_.set(key);
    }
    marked_.synchronize();
}

void X11KeyboardHold::lendToCarrier() {
    // The carrier holds them for the user from now on, and lets go when the user does.
    for (std::size_t key = 0; key < down_.size(); ++key)
        if (down_[key])
            poster_.lent_.push_back({static_cast<std::uint8_t>(key), unmarked_.carrier(),
                                     userKeyboard_.value_or(unmarked_.carrier())});
    static_cast<void>(unmarked_.keys()); // known, when they are let go of
    poster_.hasLent_ = !poster_.lent_.empty();
}

} // namespace kelvora
