// SPDX-License-Identifier: MIT
#pragma once

#include "host/event_poster.h"

#include <chrono>
#include <thread>

namespace kelvora {

/// For a server that lets nobody post: makes no events. Any thread.
class AbsentEventPoster final : public EventPoster {
public:
    [[nodiscard]] std::optional<InputEvent> createKeyEvent(KeyCode /*keyCode*/,
                                                           KeyDirection /*direction*/) override {
        return std::nullopt;
    }
    void post(const InputEvent& /*event*/) override {}
    [[nodiscard]] EventFlags modifierState() override { return 0; }
    void sleep(double seconds) override {
        if (seconds > 0)
            std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
    }
    [[nodiscard]] std::unique_ptr<KeyboardHold> holdKeyboard(FocusTarget /*target*/) override {
        return nullptr;
    }
};

} // namespace kelvora
