// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/event_loop.h"
#include "host/linux/secure_entry_gate.h"

#include <cstdint>
#include <functional>
#include <memory>

namespace kelvora {

/// A SecureEntryGate that runs by the clock, with a timer in the main loop. Main thread only.
class TimedSecureEntryGate {
public:
    /// The arguments are those of SecureEntryGate; the loop and the secure entry outlive the gate.
    TimedSecureEntryGate(
        EventLoop& loop, SecureEntry* secureEntry, EventHandler deliver,
        std::function<void(FocusChange)> onFocusChanged,
        std::function<void(std::uint8_t)> onFencePassed = [](std::uint8_t) {});
    ~TimedSecureEntryGate();

    void handleEvent(const InputEvent& event);
    void handleWindowChange();
    void handleGrab();
    void setTextRequired(bool isRequired) { gate_.setTextRequired(isRequired); }
    void handleFocusClient(std::uint32_t client);
    void handleFence(std::uint8_t fence);
    void clear() { gate_.clear(); }

private:
    void setTimer(SecureEntryGate::Time time) const;
    void handleTimer();

    int timer_; // -1 when the system has none left: what is held back then waits for what comes
                // next
    SecureEntryGate gate_;
    std::unique_ptr<DescriptorWatch> watch_;
};

} // namespace kelvora
