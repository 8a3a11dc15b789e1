// SPDX-License-Identifier: MIT
#include "host/linux/timed_secure_entry_gate.h"

#include <sys/timerfd.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <utility>

namespace kelvora {
namespace {

using Clock = std::chrono::steady_clock; // CLOCK_MONOTONIC

} // namespace

TimedSecureEntryGate::TimedSecureEntryGate(EventLoop& loop, SecureEntry* secureEntry,
                                           EventHandler deliver,
                                           std::function<void(FocusChange)> onFocusChanged,
                                           std::function<void(std::uint8_t)> onFencePassed)
    : timer_(secureEntry != nullptr ? timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK)
                                    : -1),
      gate_(secureEntry, {.deliver = std::move(deliver),
                          .onFocusChanged = std::move(onFocusChanged),
                          .onFencePassed = std::move(onFencePassed),
                          .setTimer = [this](SecureEntryGate::Time time) { setTimer(time); }}) {
    if (timer_ >= 0)
        watch_ = loop.watchReadable(timer_, [this] { handleTimer(); });
}

TimedSecureEntryGate::~TimedSecureEntryGate() {
    watch_.reset();
    if (timer_ >= 0)
        close(timer_);
}

void TimedSecureEntryGate::handleEvent(const InputEvent& event) {
    gate_.handleEvent(event, Clock::now());
}

void TimedSecureEntryGate::handleWindowChange() {
    gate_.handleWindowChange(Clock::now());
}

void TimedSecureEntryGate::handleGrab() {
    gate_.handleGrab(Clock::now());
}

void TimedSecureEntryGate::handleFocusClient(std::uint32_t client) {
    gate_.handleFocusClient(client, Clock::now());
}

void TimedSecureEntryGate::handleFence(std::uint8_t fence) {
    gate_.handleFence(fence, Clock::now());
}

void TimedSecureEntryGate::setTimer(SecureEntryGate::Time time) const {
    using namespace std::chrono;
    const auto since = duration_cast<nanoseconds>(time.time_since_epoch()).count();
    constexpr std::int64_t second = 1'000'000'000;
    const itimerspec expiry{.it_interval = {},
                            .it_value = {.tv_sec = since / second, .tv_nsec = since % second}};
    timerfd_settime(timer_, TFD_TIMER_ABSTIME, &expiry, nullptr);
}

void TimedSecureEntryGate::handleTimer() {
    std::uint64_t count = 0;
    if (read(timer_, &count, sizeof count) > 0)
        gate_.handleTimer(Clock::now());
}

} // namespace kelvora
