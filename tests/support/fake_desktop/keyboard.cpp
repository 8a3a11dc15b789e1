// SPDX-License-Identifier: MIT
#include "tests/support/fake_desktop/keyboard.h"

#include <algorithm>

namespace kelvora::fake {

namespace {

const std::map<KeyCode, EventFlags> modifierFlags{
    {keyCode::leftShift, eventFlag::shift | eventFlag::leftShiftDevice},
    {keyCode::rightShift, eventFlag::shift | eventFlag::rightShiftDevice},
    {keyCode::leftControl, eventFlag::control},
    {keyCode::rightControl, eventFlag::control},
    {keyCode::leftOption, eventFlag::option},
    {keyCode::rightOption, eventFlag::option},
    {keyCode::leftCommand, eventFlag::command},
    {keyCode::rightCommand, eventFlag::command},
    {keyCode::capsLock, 0},
};

EventFlags flagsOf(const std::set<KeyCode>& modifiers) {
    EventFlags flags = 0;
    for (const KeyCode modifier : modifiers)
        flags |= modifierFlags.at(modifier);
    return flags;
}

} // namespace

class Keyboard::Hold final : public KeyboardHold {
public:
    Hold(Keyboard& keyboard, FocusTarget target) : keyboard_(keyboard), target_(target) {
        keyboard_.hold_ = this;
    }
    ~Hold() override {
        keyboard_.hold_ = nullptr;
        for (const UserKey& key : std::exchange(keyboard_.heldBack_, {}))
            keyboard_.deliver(key);
    }

    [[nodiscard]] bool settle() override {
        keyboard_.sleep(EventHub::lag);
        return keyboard_.canSettle;
    }
    [[nodiscard]] bool hasFocus() override {
        return keyboard_.windows_.focusedField() && keyboard_.windows_.focusTarget() == target_;
    }

    /// Where the next posted key goes; null: nowhere.
    [[nodiscard]] TextField* receiver() {
        hasBegun_ = hasBegun_ || hasFocus();
        hasFailed_ = hasFailed_ || !hasBegun_ || keyboard_.windows_.isGrabbed();
        return hasFailed_ ? nullptr : &keyboard_.windows_.field(target_.id);
    }
    [[nodiscard]] bool hasHeldKeys() override {
        return std::ranges::any_of(keyboard_.heldBack_, [](const UserKey& key) {
            return key.direction == KeyDirection::down && !modifierFlags.contains(key.keyCode);
        });
    }
    [[nodiscard]] bool hasFailed() override { return hasFailed_; }

private:
    Keyboard& keyboard_;
    FocusTarget target_;
    bool hasBegun_ = false;
    bool hasFailed_ = false;
};

void Keyboard::deliver(UserKey key) {
    if (hold_) {
        heldBack_.push_back(key);
        return;
    }
    if (windows_.isGrabbed())
        return;
    if (modifierFlags.contains(key.keyCode)) {
        deliverModifier(key);
        return;
    }
    if (key.direction == KeyDirection::up)
        return;
    const EventFlags flags = flagsOf(modifiersDown_);
    const InputEvent event{
        .type = EventType::keyDown,
        .keyCode = key.keyCode,
        .flags = flags,
        .timestamp = scheduler_.now(),
        .text = EventText(layouts_.text(key.keyCode, (flags & eventFlag::shift) != 0))};
    hub_.emit(event);
    if (TextField* field = windows_.focusedField())
        field->receive(event);
}

void Keyboard::deliverModifier(UserKey key) {
    if (key.direction == KeyDirection::down)
        modifiersDown_.insert(key.keyCode);
    else
        modifiersDown_.erase(key.keyCode);
    hub_.emit({.type = EventType::flagsChanged,
               .keyCode = key.keyCode,
               .flags = flagsOf(modifiersDown_),
               .timestamp = scheduler_.now(),
               .text = {}});
}

std::optional<InputEvent> Keyboard::createKeyEvent(KeyCode keyCode, KeyDirection direction) {
    if (refuses && refuses(keyCode, direction))
        return std::nullopt;
    return InputEvent{.type =
                          direction == KeyDirection::down ? EventType::keyDown : EventType::keyUp,
                      .keyCode = keyCode,
                      .text = {}};
}

void Keyboard::post(const InputEvent& event) {
    const bool down = event.type == EventType::keyDown;
    posted.push_back({scheduler_.now(), down ? KeyDirection::down : KeyDirection::up, event});
    if (!down)
        return;
    TextField* field = hold_ ? hold_->receiver() : windows_.focusedField();
    if (!field)
        return;
    InputEvent seen = event;
    seen.timestamp = scheduler_.now();
    hub_.emit(seen);
    field->receive(event);
}

EventFlags Keyboard::modifierState() {
    return flagsOf(modifiersDown_);
}

std::unique_ptr<KeyboardHold> Keyboard::holdKeyboard(FocusTarget target) {
    if (!canHold || hold_)
        return nullptr;
    return std::make_unique<Hold>(*this, target);
}

} // namespace kelvora::fake
