// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_event_poster.h"

#include "host/linux/x11/x11_keyboard_hold.h"
#include "host/linux/x11/x11_text_typist.h"
#include "host/linux/xkb/key_positions.h"

#include <xkbcommon/xkbcommon-keysyms.h>

#include <chrono>
#include <thread>

namespace kelvora {
namespace {

constexpr std::uint8_t shiftModifier = 1;
constexpr std::uint8_t controlModifier = 4;

/// Keys that are asked for by what they do rather than by where they are.
std::optional<xkb_keysym_t> keysymFor(KeyCode keyCode) {
    switch (keyCode) {
    case keyCode::backspace:
        return XKB_KEY_BackSpace;
    case keyCode::leftArrow:
        return XKB_KEY_Left;
    case keyCode::rightArrow:
        return XKB_KEY_Right;
    default:
        return std::nullopt;
    }
}

/// The letter of a shortcut.
std::optional<xkb_keysym_t> letterFor(const InputEvent& event) {
    if ((event.flags & eventFlag::command) == 0)
        return std::nullopt;
    switch (event.keyCode) {
    case keyCode::a:
        return XKB_KEY_a;
    case keyCode::c:
        return XKB_KEY_c;
    case keyCode::v:
        return XKB_KEY_v;
    default:
        return std::nullopt;
    }
}

std::optional<std::uint8_t> keycodeAt(xkb_keymap* keymap, KeyCode keyCode) {
    const auto name = keyNameForKeyCode(keyCode);
    if (!name)
        return std::nullopt;
    const xkb_keycode_t keycode = xkb_keymap_key_by_name(keymap, std::string(*name).c_str());
    if (keycode == XKB_KEYCODE_INVALID || keycode > 255)
        return std::nullopt;
    return static_cast<std::uint8_t>(keycode);
}

} // namespace

std::unique_ptr<X11EventPoster> X11EventPoster::create(const std::string& display,
                                                       X11PostingMarks& marks) {
    auto marked = X11KeyboardControl::create(display.c_str());
    auto unmarked = X11KeyboardControl::create(display.c_str());
    if (!marked || !unmarked)
        return nullptr;
    return std::unique_ptr<X11EventPoster>(
        new X11EventPoster(display, std::move(marked), std::move(unmarked), marks));
}

X11EventPoster::X11EventPoster(std::string display, std::unique_ptr<X11KeyboardControl> marked,
                               std::unique_ptr<X11KeyboardControl> unmarked, X11PostingMarks& marks)
    : display_(std::move(display)), marked_(std::move(marked)), unmarked_(std::move(unmarked)),
      marks_(marks) {
    marks_.markedClient = marked_->clientBase();
    marks_.replayingClient = unmarked_->clientBase();
    marks_.onUserKeyRelease = [this](std::uint8_t keycode) { onUserKeyRelease(keycode); };
    releaseForgottenKeys();
}

X11EventPoster::~X11EventPoster() {
    marks_.onUserKeyRelease = nullptr;
    marks_.markedClient = 0;
    marks_.replayingClient = 0;
    for (const LentKey& key : lent_)
        releaseLent(key);
}

/// Keys that only the XTEST keyboard holds when the program starts were left by one that crashed.
void X11EventPoster::releaseForgottenKeys() {
    X11KeySet synthetic;
    X11KeySet physical;
    for (const X11SlaveKeyboard& keyboard : marked_->slaveKeyboards())
        (keyboard.isXTest ? synthetic : physical) |= marked_->keysDownOn(keyboard.id);
    synthetic &= ~physical;
    for (std::size_t key = 0; key < synthetic.size(); ++key)
        if (synthetic[key])
            marked_->releaseKey(static_cast<std::uint8_t>(key));
    marked_->flush();
}

std::optional<InputEvent> X11EventPoster::createKeyEvent(KeyCode keyCode, KeyDirection direction) {
    const std::lock_guard lock(mutex_);
    if (!marked_->isAlive())
        return std::nullopt;
    InputEvent event;
    event.type = direction == KeyDirection::down ? EventType::keyDown : EventType::keyUp;
    event.keyCode = keyCode;
    return event;
}

void X11EventPoster::post(const InputEvent& event) {
    const std::lock_guard lock(mutex_);
    if (event.sourceUserData != 0)
        marks_.mark = event.sourceUserData;
    X11KeyboardControl& control = event.sourceUserData != 0 ? *marked_ : *unmarked_;
    if (!event.text.empty()) {
        const auto gate = [&](const std::function<void()>& send) {
            return postGuarded(control, send);
        };
        if (event.type != EventType::keyDown)
            return;
        if (hold_ != nullptr)
            hold_->noteForeignKeymap();
        if (typeText(control, event.text.view(), gate) && hold_ != nullptr)
            hold_->acceptKeymap();
    } else if (event.type == EventType::keyDown) {
        postKeyDown(control, event);
    } else if (event.type == EventType::keyUp) {
        postKeyUp(control);
    }
    control.flush();
}

bool X11EventPoster::postGuarded(X11KeyboardControl& control, const std::function<void()>& send) {
    if (hold_ != nullptr)
        return hold_->post(control, send);
    send();
    return true;
}

std::optional<KeyStroke> X11EventPoster::strokeFor(X11KeyboardControl& control,
                                                   const InputEvent& event) {
    const std::uint8_t group = control.state().lockedGroup;
    // In the layout that has the letter: from a key that types no Latin letter, applications guess
    // the letter each in its own way, and not all guess the one that is meant.
    if (const auto letter = letterFor(event))
        if (const auto stroke = control.keys().findKeysym(*letter, group))
            return stroke;
    if (const auto keysym = keysymFor(event.keyCode))
        if (const auto stroke = control.keys().findKeysym(*keysym, group))
            return KeyStroke{stroke->keycode, group, 0};
    const auto keycode = keycodeAt(control.keymap(), event.keyCode);
    return keycode ? std::optional(KeyStroke{*keycode, group, 0}) : std::nullopt;
}

void X11EventPoster::postKeyDown(X11KeyboardControl& control, const InputEvent& event) {
    keyDown_.reset();
    if (!control.synchronize())
        return;
    const auto stroke = strokeFor(control, event);
    if (!stroke)
        return;
    std::uint8_t modifiers = 0;
    if ((event.flags & eventFlag::shift) != 0)
        modifiers |= shiftModifier;
    if ((event.flags & (eventFlag::control | eventFlag::command)) != 0)
        modifiers |= controlModifier;
    if ((event.flags & eventFlag::option) != 0)
        modifiers |= ModifierRoles::of(control.keymap()).option;
    postGuarded(control, [&] {
        auto neutral =
            std::make_unique<X11NeutralKeyboard>(control, X11NeutralKeyboard::Locks::keep);
        neutral->lockGroup(stroke->group);
        neutral->pressModifiers(modifiers);
        control.pressKey(stroke->keycode);
        keyDown_ = KeyDown{stroke->keycode, std::move(neutral)};
    });
}

void X11EventPoster::postKeyUp(X11KeyboardControl& control) {
    // A key that was withheld has nothing to let go of.
    if (!keyDown_)
        return;
    control.releaseKey(keyDown_->keycode);
    keyDown_.reset();
}

EventFlags X11EventPoster::modifierState() {
    const std::lock_guard lock(mutex_);
    if (!marked_->synchronize())
        return 0;
    // Only what is held: locks and latches have nobody's finger on them.
    const std::uint8_t held = marked_->state().baseModifiers;
    if (held == 0)
        return 0;
    const ModifierRoles roles = ModifierRoles::of(marked_->keymap());
    EventFlags flags = 0;
    if ((held & shiftModifier) != 0)
        flags |= eventFlag::shift;
    if ((held & controlModifier) != 0)
        flags |= eventFlag::control;
    if ((held & roles.option) != 0)
        flags |= eventFlag::option;
    if ((held & roles.command) != 0)
        flags |= eventFlag::command;
    return flags;
}

void X11EventPoster::sleep(double seconds) {
    if (seconds > 0)
        std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
}

std::unique_ptr<KeyboardHold> X11EventPoster::holdKeyboard(FocusTarget target) {
    if (!marked_->isAlive())
        return nullptr;
    return std::make_unique<X11KeyboardHold>(*this, target);
}

void X11EventPoster::processEvents() {
    const std::unique_lock lock(mutex_, std::try_to_lock);
    if (!lock || hold_ != nullptr)
        return;
    marked_->processEvents();
    unmarked_->processEvents();
}

void X11EventPoster::releaseLent(const LentKey& key) {
    unmarked_->setCarrier(key.carrier);
    unmarked_->releaseKey(key.keycode);
    unmarked_->setCarrier(key.userKeyboard);
    unmarked_->useCarrier();
    unmarked_->announceState();
    unmarked_->setCarrier(0);
}

void X11EventPoster::onUserKeyRelease(std::uint8_t keycode) {
    if (!hasLent_)
        return;
    const std::lock_guard lock(mutex_);
    std::erase_if(lent_, [&](const LentKey& key) {
        if (key.keycode != keycode)
            return false;
        releaseLent(key);
        return true;
    });
    hasLent_ = !lent_.empty();
}

} // namespace kelvora
