// SPDX-License-Identifier: MIT
#pragma once

#include "host/dispatch.h"
#include "host/timers.h"

#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <vector>

namespace kelvora::fake {

/// A virtual clock, and the main thread and the worker taking turns on it. Everything really runs
/// on the test's thread: while the worker sleeps, the main thread serves what falls into that time.
class Scheduler final : public Dispatch, public Timers {
public:
    [[nodiscard]] double now() const { return now_; }

    /// Runs `event` on the main thread `delay` seconds from now.
    void at(double delay, std::function<void()> event) {
        scheduled_.emplace(now_ + delay, std::move(event));
    }

    /// Lets time pass for the one who calls, as a sleep does.
    void pass(double seconds);
    /// Serves both threads for `seconds`; a longer conversion is run to its end.
    void runFor(double seconds);
    /// Serves both threads until nothing is left to do; what repeating timers do is not awaited.
    void run();

    [[nodiscard]] bool isMainThread() const override { return !onWorker_; }
    void postToMain(std::function<void()> work) override { main_.push_back(std::move(work)); }
    void postToWorker(std::function<void()> work) override { worker_.push_back(std::move(work)); }
    [[nodiscard]] std::unique_ptr<Timer> repeat(double seconds,
                                                std::function<void()> work) override;

private:
    using Queue = std::deque<std::function<void()>>;
    struct RepeatingTimer;

    static void runFront(Queue& queue);
    void serveMain();
    [[nodiscard]] bool runNextScheduled(double end);
    void runUntil(double end);

    double now_ = 1000; // not zero: only differences may count
    bool onWorker_ = false;
    Queue main_, worker_;
    std::multimap<double, std::function<void()>> scheduled_;
    std::vector<RepeatingTimer*> timers_;
};

} // namespace kelvora::fake
