// SPDX-License-Identifier: MIT
#include "tests/support/fake_desktop/fake_desktop.h"

namespace kelvora::fake {

FakeDesktop::FakeDesktop() {
    windows.notifyInOrder = [this](std::function<void()> notice) {
        events.inOrder(std::move(notice));
    };
}

Desktop FakeDesktop::services() {
    return {scheduler, log,         events,        keyboard,   layouts, translator,
            windows,   permissions, accessibility, pasteboard, probe,   secureInput};
}

SessionServices FakeDesktop::session() {
    return {scheduler,
            defaults,
            login,
            addresses,
            lifecycle,
            lifecycle,
            lifecycle,
            lifecycle,
            [this](UserDriverDelegate&) { return std::make_unique<Updater>(sessionCalls); },
            launchedInBackground};
}

void FakeDesktop::type(std::u16string_view labels) {
    for (const char16_t label : labels) {
        strike(label);
        runFor(typingPause);
    }
}

void FakeDesktop::tap(KeyCode keyCode) {
    keyboard.press(keyCode);
    runFor(tapLength);
    keyboard.release(keyCode);
    runFor(typingPause);
}

void FakeDesktop::doubleShift() {
    tap(keyCode::leftShift);
    keyboard.press(keyCode::leftShift);
    runFor(tapLength);
    keyboard.release(keyCode::leftShift);
}

void FakeDesktop::strike(char16_t label) {
    const LabelledKey key = keyLabelled(label);
    if (key.shift) {
        keyboard.press(keyCode::leftShift);
    }
    keyboard.press(key.keyCode);
    keyboard.release(key.keyCode);
    if (key.shift) {
        keyboard.release(keyCode::leftShift);
    }
}

} // namespace kelvora::fake
