// SPDX-License-Identifier: MIT
#include "app/io/hotkey_monitor.h"

#include "app/io/system_event_poster.h"
#include "core/text/character_class.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace kelvora {

namespace {

constexpr EventMask keyboardEvents =
    eventMaskBit(EventType::keyDown) | eventMaskBit(EventType::flagsChanged);
constexpr EventMask tapEvents = keyboardEvents | eventMaskBit(EventType::leftMouseDown) |
                                eventMaskBit(EventType::rightMouseDown) |
                                eventMaskBit(EventType::otherMouseDown);
static_assert(keyboardEvents == 0x1400 && tapEvents == 0x200140A);

constexpr EventFlags shortcutModifiers = eventFlag::control | eventFlag::command;
constexpr EventFlags nonShiftModifiers =
    eventFlag::control | eventFlag::option | eventFlag::command | eventFlag::function;
static_assert(shortcutModifiers == 0x140000 && nonShiftModifiers == 0x9C0000);

constexpr std::size_t maximumKeyText = 8; // UTF-16 units

constexpr std::array caretMovingKeys{
    keyCode::returnKey, keyCode::tab,       keyCode::escape,        keyCode::keypadEnter,
    keyCode::home,      keyCode::pageUp,    keyCode::forwardDelete, keyCode::end,
    keyCode::pageDown,  keyCode::leftArrow, keyCode::rightArrow,    keyCode::downArrow,
    keyCode::upArrow};
static_assert(caretMovingKeys.size() == 13);

bool movesCaret(KeyCode key) {
    return std::ranges::find(caretMovingKeys, key) != caretMovingKeys.end();
}

bool isShiftKey(KeyCode key) {
    return key == keyCode::leftShift || key == keyCode::rightShift;
}

} // namespace

HotkeyMonitor::HotkeyMonitor(EventSource& source, Dispatch& dispatch, LogSink& log)
    : source_(source), dispatch_(dispatch), logger_(log, "Hotkey") {}

HotkeyMonitor::~HotkeyMonitor() {
    stop();
}

void HotkeyMonitor::start() {
    if (eventTap_ || globalMonitor_ || localMonitor_) {
        return;
    }
    stop();
    installTap();
    installMonitors();
    if (!eventTap_ && !globalMonitor_ && !localMonitor_) {
        stop();
    }
}

void HotkeyMonitor::stop() {
    if (eventTap_) {
        eventTap_->setEnabled(false);
    }
    eventTap_.reset();
    globalMonitor_.reset();
    localMonitor_.reset();
    interpreter_.reset();
    detector_.reset();
    forgetTypedText();
    textAtTrigger_.reset();
}

void HotkeyMonitor::installTap() {
    std::unique_ptr<EventTap> tap =
        source_.createTap(tapEvents, [weak = self_.handle()](const InputEvent& event) {
            if (HotkeyMonitor* monitor = weak.get()) {
                monitor->handleTapEvent(event);
            }
        });
    if (!tap) {
        return;
    }
    tap->setEnabled(true);
    if (tap->isEnabled()) {
        eventTap_ = std::move(tap);
    }
}

void HotkeyMonitor::installMonitors() {
    if (!eventTap_) {
        globalMonitor_ = source_.addGlobalMonitor(keyboardEvents,
                                                  [weak = self_.handle()](const InputEvent& event) {
                                                      if (HotkeyMonitor* monitor = weak.get()) {
                                                          monitor->handle(event);
                                                      }
                                                  });
    }
    localMonitor_ =
        source_.addLocalMonitor(keyboardEvents, [weak = self_.handle()](const InputEvent& event) {
            HotkeyMonitor* monitor = weak.get();
            // A tap has seen this program's own events already.
            if (monitor && !monitor->eventTap_) {
                monitor->handle(event);
            }
        });
}

void HotkeyMonitor::handleTapEvent(const InputEvent& event) {
    switch (event.type) {
    case EventType::tapDisabledByTimeout:
    case EventType::tapDisabledByUserInput:
        if (eventTap_) {
            eventTap_->setEnabled(true);
        }
        return;
    case EventType::leftMouseDown:
    case EventType::rightMouseDown:
    case EventType::otherMouseDown:
        forgetTypedText();
        if (onMouseDown) {
            onMouseDown();
        }
        return;
    case EventType::keyDown:
        if (event.sourceUserData != SystemEventPoster::userData) {
            trackTyping(event);
        }
        handleOnMainThread(event);
        return;
    case EventType::flagsChanged:
        handleOnMainThread(event);
        return;
    case EventType::keyUp:
        return;
    }
}

void HotkeyMonitor::handleOnMainThread(const InputEvent& event) {
    if (dispatch_.isMainThread()) {
        handle(event);
        return;
    }
    dispatch_.postToMain([weak = self_.handle(), event] {
        if (HotkeyMonitor* monitor = weak.get()) {
            monitor->handle(event);
        }
    });
}

void HotkeyMonitor::forgetTypedText() {
    typedText_->reset();
    isComposing_ = false;
    isWordLost_ = false;
}

void HotkeyMonitor::trackTyping(const InputEvent& event) {
    isComposing_ = event.composition == Composition::underWay;
    if ((event.flags & shortcutModifiers) != 0 || movesCaret(event.keyCode)) {
        forgetTypedText();
    } else if (event.composition == Composition::broken) {
        typedText_->reset();
        isWordLost_ = true;
    } else if (isComposing_ || isWithinLostWord(event)) {
        return;
    } else if (event.keyCode == keyCode::backspace) {
        if ((event.flags & eventFlag::option) != 0) {
            typedText_->reset();
        } else {
            typedText_->deleteBackward();
        }
    } else {
        typedText_->record(event.text.view().substr(0, maximumKeyText));
    }
}

bool HotkeyMonitor::isWithinLostWord(const InputEvent& event) {
    const std::u16string_view text = event.text.view();
    isWordLost_ = isWordLost_ && (text.empty() || !isWhitespace(text));
    return isWordLost_;
}

void HotkeyMonitor::handle(const InputEvent& event) {
    if (event.type == EventType::keyDown) {
        // An ordinary key only ever cancels a tap.
        static_cast<void>(detector_.process(HotkeyInput::otherKey, event.timestamp));
    } else if (event.type == EventType::flagsChanged) {
        handleFlagsChanged(event);
    }
}

void HotkeyMonitor::handleFlagsChanged(const InputEvent& event) {
    const bool shift = (event.flags & eventFlag::shift) != 0;
    if (isShiftKey(event.keyCode)) {
        if (onShiftEvent) {
            onShiftEvent();
        }
        logger_.debug("Shift event: code=%hu, shift=%{bool}d", event.keyCode, shift);
    }
    const HotkeyInput input =
        interpreter_.flagsChanged({.keyCode = event.keyCode,
                                   .shift = shift,
                                   .leftShift = (event.flags & eventFlag::leftShiftDevice) != 0,
                                   .rightShift = (event.flags & eventFlag::rightShiftDevice) != 0,
                                   .otherModifier = (event.flags & nonShiftModifiers) != 0});
    if (detector_.process(input, event.timestamp)) {
        logger_.info("Double Shift detected! Triggering onTrigger");
        postTrigger();
    }
}

void HotkeyMonitor::postTrigger() {
    if (isComposing_) {
        // The next Backspace would be for what is shown of the sequence.
        typedText_->reset();
        isWordLost_ = true;
    }
    textAtTrigger_ = typedText_->text();
    dispatch_.postToMain([weak = self_.handle()] {
        const HotkeyMonitor* monitor = weak.get();
        if (!monitor || !monitor->onTrigger) {
            return;
        }
        // A copy: the callback may destroy the monitor.
        const std::function<void()> trigger = monitor->onTrigger;
        trigger();
    });
}

} // namespace kelvora
