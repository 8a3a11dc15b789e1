// SPDX-License-Identifier: MIT
#pragma once

#include "host/dispatch.h"
#include "host/linux/loop/worker_thread.h"

#include <memory>

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
    std::unique_ptr<WorkerThread> worker_;
};

} // namespace kelvora
