// SPDX-License-Identifier: MIT
#include "tests/support/fake_desktop/scheduler.h"

#include <algorithm>
#include <utility>

namespace kelvora::fake {

namespace {

std::function<void()> takeFront(std::deque<std::function<void()>>& queue) {
    std::function<void()> work = std::move(queue.front());
    queue.pop_front();
    return work;
}

} // namespace

class Scheduler::RepeatingTimer final : public Timer {
public:
    RepeatingTimer(Scheduler& scheduler, double seconds, std::function<void()> work)
        : scheduler_(scheduler), interval_(seconds), next_(scheduler.now() + seconds),
          work_(std::move(work)) {
        scheduler_.timers_.push_back(this);
    }
    ~RepeatingTimer() override { std::erase(scheduler_.timers_, this); }

    [[nodiscard]] double next() const { return next_; }
    void tick() {
        next_ += interval_;
        work_();
    }

private:
    Scheduler& scheduler_;
    double interval_;
    double next_;
    std::function<void()> work_;
};

std::unique_ptr<Timer> Scheduler::repeat(double seconds, std::function<void()> work) {
    return std::make_unique<RepeatingTimer>(*this, seconds, std::move(work));
}

void Scheduler::at(double delay, std::function<void()> event) {
    scheduled_.emplace(now_ + delay, std::move(event));
}

void Scheduler::pass(double seconds) {
    if (seconds <= 0) {
        return;
    }
    const double end = now_ + seconds;
    const bool wasOnWorker = std::exchange(onWorker_, false);
    serveMain();
    while (runNextScheduled(end)) {
        serveMain();
    }
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
    while (!scheduled_.empty()) {
        runUntil(scheduled_.begin()->first);
    }
}

void Scheduler::runUntil(double end) {
    do {
        serveMain();
        while (!worker_.empty()) {
            const std::function<void()> work = takeFront(worker_);
            onWorker_ = true;
            work();
            onWorker_ = false;
            serveMain();
        }
    } while (runNextScheduled(end));
}

void Scheduler::serveMain() {
    while (!main_.empty()) {
        takeFront(main_)();
    }
}

bool Scheduler::runNextScheduled(double end) {
    const auto timer = std::ranges::min_element(timers_, {}, &RepeatingTimer::next);
    const auto next = scheduled_.begin();
    if (timer != timers_.end() && (*timer)->next() <= end &&
        (next == scheduled_.end() || (*timer)->next() < next->first)) {
        now_ = std::max(now_, (*timer)->next());
        (*timer)->tick();
        return true;
    }
    if (next == scheduled_.end() || next->first > end) {
        return false;
    }
    now_ = std::max(now_, next->first);
    const std::function<void()> event = std::move(next->second);
    scheduled_.erase(next);
    event();
    return true;
}

} // namespace kelvora::fake
