// SPDX-License-Identifier: MIT
#pragma once

#include "host/focus_target.h"
#include "host/linux/x11/x11_connection.h"
#include "host/linux/x11/x11_grab_probe.h"
#include "host/linux/x11/x11_keymap.h"
#include "host/linux/xkb/character_keys.h"

#include <bitset>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace kelvora {

/// The set of keys that are down, by key code.
using X11KeySet = std::bitset<256>;

/// One slave keyboard of the core keyboard.
struct X11SlaveKeyboard {
    std::uint16_t id = 0;
    bool isXTest = false;
};

/// The requests that posting is made of, on one connection. One thread at a time; each call that
/// answers waits for the server.
class X11KeyboardControl {
public:
    /// Null when the server cannot be reached or lacks XTEST or XKB.
    [[nodiscard]] static std::unique_ptr<X11KeyboardControl> create(const char* display);

    [[nodiscard]] xcb_connection_t* connection() const { return connection_.get(); }
    [[nodiscard]] bool isAlive() const;
    [[nodiscard]] std::uint32_t clientBase() const;

    /// Takes up what other clients did to the keyboard until now. False when the server is gone.
    bool synchronize();
    /// Takes up what has arrived, without a question.
    void processEvents();
    /// Called from both for every event that is not about the keymap; null for nobody.
    void setOnOtherEvent(std::function<void(const xcb_generic_event_t&)> onOtherEvent) {
        onOtherEvent_ = std::move(onOtherEvent);
    }
    /// As of the last synchronize().
    [[nodiscard]] const X11KeyboardState& state() const { return keymap_->state(); }
    /// Changes with every change of the keymap, as of the last synchronize() or keys().
    [[nodiscard]] std::uint64_t keymapVersion() const { return keymap_->version(); }
    [[nodiscard]] const CharacterKeys& keys();
    /// As of the last keys(): does not ask the server, but the first time.
    [[nodiscard]] const CharacterKeys& knownKeys() { return keys_ ? *keys_ : keys(); }
    [[nodiscard]] xkb_keymap* keymap() { return keymap_->keymap(); }

    /// Through which device pressKey() goes: 0 for the XTEST keyboard, else a slave keyboard's id.
    void setCarrier(std::uint16_t deviceId) { carrier_ = deviceId; }
    [[nodiscard]] std::uint16_t carrier() const { return carrier_; }
    void pressKey(std::uint8_t keycode) { sendKey(keycode, true); }
    void releaseKey(std::uint8_t keycode) { sendKey(keycode, false); }

    /// Makes the carrier the device that the core keyboard was used with last, without a key.
    void useCarrier();
    /// The slave keyboard that the core keyboard was used with last; 0 when unknown.
    [[nodiscard]] std::uint16_t lastUsedKeyboard();
    /// Tells applications the state again. Like useCarrier(), it only sends. After another slave
    /// keyboard was used, Qt 5 believes the first group to be active until the next notice.
    void announceState();

    void lockGroup(std::uint8_t group);
    /// Sets the locked modifiers named in `affected` to `values` and clears all latches.
    void lockModifiers(std::uint8_t affected, std::uint8_t values);
    [[nodiscard]] bool isStickyKeysOn();

    /// What is down on the core keyboard, and on one slave keyboard.
    [[nodiscard]] X11KeySet keysDown();
    [[nodiscard]] X11KeySet keysDownOn(std::uint16_t deviceId);
    /// Empty without XInput 2.
    [[nodiscard]] std::vector<X11SlaveKeyboard> slaveKeyboards();

    [[nodiscard]] bool isKeyboardGrabbed() { return grabProbe_.isKeyboardGrabbed(); }
    void grabServer() { xcb_grab_server(connection()); }
    void ungrabServer();
    void flush() { xcb_flush(connection()); }

private:
    X11KeyboardControl(XcbConnectionPtr connection, std::unique_ptr<X11Keymap> keymap);
    void sendKey(std::uint8_t keycode, bool press);

    XcbConnectionPtr connection_;
    X11GrabProbe grabProbe_{connection_.get()};
    std::unique_ptr<X11Keymap> keymap_;
    std::function<void(const xcb_generic_event_t&)> onOtherEvent_;
    std::optional<CharacterKeys> keys_;
    std::uint64_t keysVersion_ = 0;
    xcb_window_t root_ = XCB_NONE;
    std::uint16_t carrier_ = 0;
    std::uint8_t xinputEvent_ = 0; ///< first event code; 0 without XInput 2
};

} // namespace kelvora
