// SPDX-License-Identifier: MIT
#include "host/linux/updates/update_schedule.h"

#include <algorithm>

namespace kelvora {
namespace {

using namespace std::chrono_literals;

constexpr std::chrono::seconds quietStart = 5min;
constexpr std::chrono::seconds startSpread = 10min;
constexpr std::chrono::seconds retryPause = 4h;
constexpr std::chrono::seconds longestWait = 4h;
constexpr double intervalSpread = 0.1; // of the interval

std::chrono::seconds part(std::chrono::seconds whole, double share) {
    return std::chrono::duration_cast<std::chrono::seconds>(whole * share);
}

} // namespace

UpdateSchedule::UpdateSchedule(std::chrono::seconds interval, double spread)
    : interval_(interval), spread_(spread) {}

void UpdateSchedule::planAfter(Time now, std::chrono::seconds pause) {
    planned_ = now;
    due_ = now + pause + part(pause, intervalSpread * spread_);
}

void UpdateSchedule::start(Time now, std::optional<Time> lastCheck) {
    planAfter(now, 0s);
    // A check in the future is a clock that was wrong then or is wrong now.
    if (lastCheck && *lastCheck <= now) {
        planAfter(*lastCheck, interval_);
    }
    planned_ = now;
    due_ = std::max(due_, now + quietStart + part(startSpread, spread_));
}

void UpdateSchedule::succeed(Time now) {
    planAfter(now, interval_);
}

void UpdateSchedule::fail(Time now) {
    planAfter(now, std::min(interval_, retryPause));
}

bool UpdateSchedule::isDue(Time now) const {
    // Set back, the clock may not come round to the planned time for years.
    return now >= due_ || now < planned_;
}

std::chrono::seconds UpdateSchedule::wait(Time now) const {
    return isDue(now) ? 1s : std::min(due_ - now, longestWait);
}

} // namespace kelvora
