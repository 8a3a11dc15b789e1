// SPDX-License-Identifier: MIT
#pragma once

#include "host/keyboard_hold.h"
#include "host/linux/x11/x11_event_poster.h"
#include "host/linux/x11/x11_focus_guard.h"

#include <functional>
#include <optional>
#include <vector>

namespace kelvora {

/// Holds keyboards by grabbing their slave devices, which cuts them off from the core keyboard for
/// the time: their keys come to us alone, while what is posted through another slave, the carrier,
/// goes on to the applications. The user's keyboards are held and the XTEST keyboard carries; when
/// the user's keys themselves come through XTEST (another program types), it is the other way
/// round.
class X11KeyboardHold : public KeyboardHold {
public:
    X11KeyboardHold(X11EventPoster& poster, FocusTarget target);
    ~X11KeyboardHold() override;

    [[nodiscard]] bool settle() override;
    [[nodiscard]] bool hasFocus() override;

    /// Calls `send` if what it posts reaches the target. With the poster's lock held.
    bool post(const std::function<void()>& send);

private:
    void grabKeyboards();
    bool grab(std::uint16_t deviceId);
    void ungrabKeyboards();
    void releaseWhatIsDown();
    void undoStickyKeys();
    void readHeldEvents();
    void replayHeldEvents();
    void pressHeldModifiers();
    void lendToCarrier();
    void returnToUserKeyboard();

    struct HeldEvent {
        std::uint8_t keycode;
        bool isPress;
        bool isRepeat;
    };

    X11EventPoster& poster_;
    X11KeyboardControl& marked_;
    X11KeyboardControl& unmarked_;
    xcb_connection_t* grabbing_;
    std::optional<X11FocusGuard> focus_;
    std::vector<std::uint16_t> grabbed_;
    /// The device that the user typed on, as a carrier; absent when unknown.
    std::optional<std::uint16_t> userKeyboard_;
    std::vector<HeldEvent> events_;
    std::uint64_t keymapVersion_ = 0; ///< when the keyboards were grabbed
    X11KeySet downBefore_;            ///< what the user held when the hold began
    X11KeySet down_;                  ///< modifiers that the carrier holds for the user at the end
};

} // namespace kelvora
