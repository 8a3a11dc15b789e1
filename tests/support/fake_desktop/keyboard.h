// SPDX-License-Identifier: MIT
#pragma once

#include "host/event_poster.h"
#include "tests/support/fake_desktop/event_hub.h"
#include "tests/support/fake_desktop/layouts.h"
#include "tests/support/fake_desktop/scheduler.h"
#include "tests/support/fake_desktop/windows.h"

#include <functional>
#include <set>
#include <utility>
#include <vector>

namespace kelvora::fake {

/// The user's keyboard, and the keys that programs post beside it.
class Keyboard final : public EventPoster {
public:
    Keyboard(Scheduler& scheduler, EventHub& hub, Layouts& layouts, Windows& windows)
        : scheduler_(scheduler), hub_(hub), layouts_(layouts), windows_(windows) {}

    // The user's fingers.
    void press(KeyCode keyCode) { deliver({keyCode, KeyDirection::down}); }
    void release(KeyCode keyCode) { deliver({keyCode, KeyDirection::up}); }
    void click(EventType button) {
        hub_.emit({.type = button, .timestamp = scheduler_.now(), .text = {}});
    }

    struct Posted {
        double time = 0;
        KeyDirection direction = KeyDirection::down;
        InputEvent event;
    };
    /// Everything that was posted, whether it reached a window or not.
    std::vector<Posted> posted;
    /// Makes createKeyEvent fail for the events for which it answers true.
    std::function<bool(KeyCode, KeyDirection)> refuses;

    bool canHold = true;
    bool canSettle = true;
    [[nodiscard]] bool isHeldBack() const { return hold_ != nullptr; }

    [[nodiscard]] std::optional<InputEvent> createKeyEvent(KeyCode keyCode,
                                                           KeyDirection direction) override;
    void post(const InputEvent& event) override;
    [[nodiscard]] EventFlags modifierState() override;
    void sleep(double seconds) override { scheduler_.pass(seconds); }
    [[nodiscard]] std::unique_ptr<KeyboardHold> holdKeyboard(FocusTarget target) override;

private:
    class Hold;
    struct UserKey {
        KeyCode keyCode = 0;
        KeyDirection direction = KeyDirection::down;
    };

    void deliver(UserKey key);
    void deliverModifier(UserKey key);

    Scheduler& scheduler_;
    EventHub& hub_;
    Layouts& layouts_;
    Windows& windows_;
    std::set<KeyCode> modifiersDown_; // as the session sees them
    Hold* hold_ = nullptr;
    std::vector<UserKey> heldBack_;
};

} // namespace kelvora::fake
