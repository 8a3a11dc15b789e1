// SPDX-License-Identifier: MIT
#include "tests/support/fake_desktop/scheduler.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace kelvora::fake {

namespace {

std::function<void()> takeFront(std::deque<std::function<void()>>& queue) {
    std::function<void()> work = std::move(queue.front());
    queue.pop_front();
    return work;
}

} // namespace

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
    runUntil(std::numeric_limits<double>::infinity());
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
    const auto next = scheduled_.begin();
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
