// SPDX-License-Identifier: MIT
#include "tests/support/fake_desktop/scheduler.h"

#include <algorithm>
#include <utility>

namespace kelvora::fake {

struct Scheduler::RepeatingTimer final : Timer {
    ~RepeatingTimer() override { std::erase(scheduler.timers_, this); }

    Scheduler& scheduler;
    double interval;
    std::function<void()> work;
    double next = scheduler.now_ + interval;

    RepeatingTimer(Scheduler& owner, double seconds, std::function<void()> toDo)
        : scheduler(owner), interval(seconds), work(std::move(toDo)) {
        scheduler.timers_.push_back(this);
    }
};

std::unique_ptr<Timer> Scheduler::repeat(double seconds, std::function<void()> work) {
    return std::make_unique<RepeatingTimer>(*this, seconds, std::move(work));
}

void Scheduler::pass(double seconds) {
    if (seconds <= 0)
        return;
    const double end = now_ + seconds;
    const bool wasOnWorker = std::exchange(onWorker_, false);
    do
        serveMain();
    while (runNextScheduled(end));
    now_ = end;
    onWorker_ = wasOnWorker;
}

void Scheduler::runFor(double seconds) {
    const double end = now_ + seconds;
    runUntil(end);
    now_ = std::max(now_, end);
}

void Scheduler::run() {
    runUntil(now_);
    while (!scheduled_.empty())
        runUntil(scheduled_.begin()->first);
}

void Scheduler::runUntil(double end) {
    do {
        serveMain();
        while (!worker_.empty()) {
            onWorker_ = true;
            runFront(worker_);
            onWorker_ = false;
            serveMain();
        }
    } while (runNextScheduled(end));
}

void Scheduler::runFront(Queue& queue) {
    const std::function<void()> work = std::move(queue.front());
    queue.pop_front();
    work();
}

void Scheduler::serveMain() {
    while (!main_.empty())
        runFront(main_);
}

bool Scheduler::runNextScheduled(double end) {
    const auto timer = std::ranges::min_element(timers_, {}, &RepeatingTimer::next);
    const auto next = scheduled_.begin();
    const bool isEvent = next != scheduled_.end() && next->first <= end;
    if (timer != timers_.end() && (*timer)->next <= end &&
        (!isEvent || (*timer)->next < next->first)) {
        now_ = std::max(now_, (*timer)->next);
        (*timer)->next += (*timer)->interval;
        (*timer)->work();
    } else if (isEvent) {
        now_ = std::max(now_, next->first);
        const std::function<void()> event = std::move(next->second);
        scheduled_.erase(next);
        event();
    } else {
        return false;
    }
    return true;
}

} // namespace kelvora::fake
