// SPDX-License-Identifier: MIT
#include "host/linux/loop/worker_thread.h"

#include <utility>

namespace kelvora {

WorkerThread::WorkerThread() : thread_([this] { run(); }) {}

WorkerThread::~WorkerThread() {
    {
        const std::lock_guard lock(mutex_);
        isEnding_ = true;
    }
    changed_.notify_one();
    thread_.join();
}

void WorkerThread::post(std::function<void()> work) {
    {
        const std::lock_guard lock(mutex_);
        queue_.push_back(std::move(work));
    }
    changed_.notify_one();
}

void WorkerThread::run() {
    std::unique_lock lock(mutex_);
    while (true) {
        changed_.wait(lock, [this] { return isEnding_ || !queue_.empty(); });
        if (queue_.empty())
            return;
        std::function<void()> work = std::move(queue_.front());
        queue_.pop_front();
        lock.unlock();
        work();
        work = nullptr; // what it holds may lock, too
        lock.lock();
    }
}

} // namespace kelvora
