// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <optional>

namespace kelvora {

/// When the next scheduled check is due. Time comes from the caller, on the wall clock, so that
/// time asleep counts.
class UpdateSchedule {
public:
    using Time = std::chrono::sys_seconds;

    /// `spread` (0 to 1, drawn once a process) sets this computer's checks apart from others'.
    UpdateSchedule(std::chrono::seconds interval, double spread);

    /// The program has started: nothing happens in its first minutes, whatever is overdue.
    void start(Time now, std::optional<Time> lastCheck);
    void succeed(Time now);
    void fail(Time now);

    [[nodiscard]] bool isDue(Time now) const;
    /// How long to sleep before looking again; long times are divided, because timers stand still
    /// while the computer is asleep.
    [[nodiscard]] std::chrono::seconds wait(Time now) const;

private:
    void planAfter(Time now, std::chrono::seconds pause);

    std::chrono::seconds interval_;
    double spread_;
    Time planned_; ///< when `due_` was decided
    Time due_;
};

} // namespace kelvora
