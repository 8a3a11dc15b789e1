// SPDX-License-Identifier: MIT
#pragma once

#include "host/keyboard_hold.h"
#include "host/linux/x11/x11_event_poster.h"
#include "host/linux/x11/x11_focus_guard.h"
#include "host/linux/x11/x11_mouse_hold.h"

#include <functional>
#include <optional>
#include <vector>

namespace kelvora {

/// Holds keyboards by grabbing their slave devices, which cuts them off from the core keyboard for
/// the time: their keys come to us alone, while what is posted through another slave, the carrier,
/// goes on to the applications. The user's keyboards are held and the XTEST keyboard carries; when
/// the user's keys themselves come through XTEST (another program types), it is the other way
/// round. Clicks wait as well: in the middle they would lead the rest of the correction elsewhere.
class X11KeyboardHold : public KeyboardHold {
public:
    X11KeyboardHold(X11EventPoster& poster, FocusTarget target);
    ~X11KeyboardHold() override;

    [[nodiscard]] bool settle() override;
    [[nodiscard]] bool hasFocus() override;
    [[nodiscard]] bool hasHeldKeys() override;
    [[nodiscard]] bool hasFailed() override;

    /// Calls `send` if what it posts over `control` reaches the target. With the poster's lock
    /// held.
    bool post(X11KeyboardControl& control, const std::function<void()>& send);
    /// Before and after something that may change the keymap for a moment: what changes in between
    /// is our own doing. With the poster's lock held.
    void noteForeignKeymap();
    void acceptKeymap();

private:
    void grabKeyboards();
    bool grab(std::uint16_t deviceId);
    void ungrabKeyboards();
    void releaseWhatIsDown();
    void undoStickyKeys();
    void addHeldEvent(const xcb_generic_event_t& event);
    /// Delivers everything that was held until now.
    void replayHeldEvents();
    void pressHeldModifiers();
    void lendToCarrier();
    void returnToUserKeyboard();

    enum class HeldKind { press, repeat, release, click };
    struct HeldEvent {
        HeldKind kind;
        std::uint8_t keycode; ///< 0 for a click
    };

    X11EventPoster& poster_;
    X11KeyboardControl& marked_;
    /// Holds as well: with the server to itself it can look, replay and end the grabs in one go.
    X11KeyboardControl& unmarked_;
    std::optional<X11FocusGuard> focus_;
    std::vector<std::uint16_t> grabbed_;
    std::optional<X11MouseHold> mouse_;
    /// The device that the user typed on, as a carrier; absent when unknown.
    std::optional<std::uint16_t> userKeyboard_;
    std::vector<HeldEvent> events_;
    std::uint64_t keymapVersion_ = 0; ///< the last that is our own doing or was found
    bool hasForeignKeymap_ = false;   ///< somebody changed the keymap since the keyboards are held
    /// What the user held when the hold began; let go of for the applications right then. Modifiers
    /// of it are pressed again before the replay, on the carrier.
    X11KeySet downBefore_;
    /// Modifiers that the carrier holds after the replay: the user's fingers are still on them.
    /// They become the poster's lent keys, which it lets go of when the user does.
    X11KeySet down_;
};

} // namespace kelvora
