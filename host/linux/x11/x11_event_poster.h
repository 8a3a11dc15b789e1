// SPDX-License-Identifier: MIT
#pragma once

#include "host/event_poster.h"
#include "host/linux/x11/x11_keyboard_control.h"
#include "host/linux/x11/x11_neutral_keyboard.h"
#include "host/linux/x11/x11_posting_marks.h"
#include "host/linux/xkb/key_interpreter.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace kelvora {

class X11KeyboardHold;

/// Posts through XTEST: events with a mark over one connection, everything else over another, so
/// that the event source can tell them apart. Any thread.
class X11EventPoster : public EventPoster {
public:
    /// Null when the server cannot be reached or lacks XTEST or XKB. The marks outlive the poster.
    [[nodiscard]] static std::unique_ptr<X11EventPoster> create(const std::string& display,
                                                                X11PostingMarks& marks);
    ~X11EventPoster() override;

    [[nodiscard]] std::optional<InputEvent> createKeyEvent(KeyCode keyCode,
                                                           KeyDirection direction) override;
    void post(const InputEvent& event) override;
    [[nodiscard]] EventFlags modifierState() override;
    void sleep(double seconds) override;
    [[nodiscard]] std::unique_ptr<KeyboardHold> holdKeyboard(FocusTarget target) override;

    /// Takes up notices, so that they do not pile up in the server. Does not wait for a correction.
    void processEvents();

private:
    friend class X11KeyboardHold;

    /// A key of ours that is down, with what it needs around it.
    struct KeyDown {
        std::uint8_t keycode;
        std::unique_ptr<X11NeutralKeyboard> neutral;
    };
    /// A modifier that the user holds and that is pressed again on the carrier for it.
    struct LentKey {
        std::uint8_t keycode;
        std::uint16_t carrier;
        std::uint16_t userKeyboard; ///< as a carrier
    };

    X11EventPoster(std::string display, std::unique_ptr<X11KeyboardControl> marked,
                   std::unique_ptr<X11KeyboardControl> unmarked, X11PostingMarks& marks);

    void releaseForgottenKeys();
    void postKeyDown(X11KeyboardControl& control, const InputEvent& event);
    void postKeyUp(X11KeyboardControl& control);
    [[nodiscard]] static std::optional<KeyStroke> strokeFor(X11KeyboardControl& control,
                                                            const InputEvent& event);
    bool postGuarded(X11KeyboardControl& control, const std::function<void()>& send);
    void onUserKeyRelease(std::uint8_t keycode);
    void releaseLent(const LentKey& key);

    std::string display_;
    std::mutex mutex_;
    std::unique_ptr<X11KeyboardControl> marked_;
    std::unique_ptr<X11KeyboardControl> unmarked_;
    X11PostingMarks& marks_;
    X11KeyboardHold* hold_ = nullptr;
    std::optional<KeyDown> keyDown_;
    std::vector<LentKey> lent_;
    std::atomic<bool> hasLent_ = false; ///< spares the event source the lock
};

} // namespace kelvora
