// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

namespace kelvora {

/// Runs work on the main thread or beside it. Any thread.
class Dispatch {
public:
    virtual ~Dispatch() = default;

    [[nodiscard]] virtual bool isMainThread() const = 0;
    /// Runs `work` on the main thread, never from inside this call, in the order of the calls.
    virtual void postToMain(std::function<void()> work) = 0;
    /// Runs `work` on the worker thread, in the order of the calls.
    virtual void postToWorker(std::function<void()> work) = 0;
};

} // namespace kelvora
