// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>

namespace kelvora {

/// A file descriptor that the main loop watches. Destroying it ends the watch; the callback is not
/// called again.
class DescriptorWatch {
public:
    virtual ~DescriptorWatch() = default;
};

/// What the Linux desktop's services need of the main loop. Main thread only.
class EventLoop {
public:
    virtual ~EventLoop() = default;

    /// Calls `onReadable` on the main thread while `descriptor` (not owned) has something to read.
    [[nodiscard]] virtual std::unique_ptr<DescriptorWatch>
    watchReadable(int descriptor, std::function<void()> onReadable) = 0;
};

} // namespace kelvora
