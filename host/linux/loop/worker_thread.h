// SPDX-License-Identifier: MIT
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace kelvora {

/// One thread that runs work in the order in which it was handed over. Any thread. Destroying it
/// waits for the work that has been handed over.
class WorkerThread {
public:
    WorkerThread();
    ~WorkerThread();
    WorkerThread(const WorkerThread&) = delete;
    WorkerThread& operator=(const WorkerThread&) = delete;

    void post(std::function<void()> work);

private:
    void run();

    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<std::function<void()>> queue_;
    bool isEnding_ = false;
    std::thread thread_; ///< last: it uses the others from its start
};

} // namespace kelvora
