// SPDX-License-Identifier: MIT
#pragma once

#include "host/dispatch.h"
#include "host/linux/loop/worker_thread.h"

#include <deque>
#include <functional>
#include <memory>
#include <mutex>

namespace kelvora {

/// The Qt loop as the main queue, and one worker. Made and destroyed on the main thread.
class QtDispatch : public Dispatch {
public:
    QtDispatch();
    /// Waits for the worker's work and runs what that has posted to the main thread.
    ~QtDispatch() override;

    [[nodiscard]] bool isMainThread() const override;
    void postToMain(std::function<void()> work) override;
    void postToWorker(std::function<void()> work) override;

private:
    class Receiver;

    void runNext();

    std::mutex mutex_;
    std::deque<std::function<void()>> forMain_;
    std::unique_ptr<Receiver> receiver_;
    std::unique_ptr<WorkerThread> worker_;
};

} // namespace kelvora
