// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/desktop/file_descriptor.h"
#include "host/linux/event_loop.h"

#include <functional>
#include <memory>
#include <utility>

struct sd_bus;

namespace kelvora {

/// A connection to a message bus that the main loop drives; nothing in it blocks. Main thread only;
/// not to be destroyed from one of its callbacks.
class MainLoopBus {
public:
    enum class Which { session, system };

    /// Null when there is no such bus. Whether it lets us in shows later.
    [[nodiscard]] static std::unique_ptr<MainLoopBus> open(Which which, EventLoop& loop);
    /// Callbacks of calls that are not answered yet are not called any more.
    ~MainLoopBus();
    MainLoopBus(const MainLoopBus&) = delete;
    MainLoopBus& operator=(const MainLoopBus&) = delete;

    /// Called once when the bus has gone away or did not let us in.
    void setOnLost(std::function<void()> handler) { onLost_ = std::move(handler); }

    [[nodiscard]] sd_bus* handle() const { return bus_.get(); }
    /// To be called after messages were sent outside of the bus's callbacks: what could not be
    /// written at once is written when the bus takes it, and deadlines are kept.
    void update();

private:
    struct CloseBus {
        void operator()(sd_bus* bus) const;
    };

    explicit MainLoopBus(sd_bus* bus) : bus_(bus) {}
    [[nodiscard]] bool watch(EventLoop& loop);
    void process();

    std::unique_ptr<sd_bus, CloseBus> bus_;
    /// What the bus waits for: bytes, room for bytes, a time. One descriptor stands for both.
    FileDescriptor wakeUp_;
    FileDescriptor timer_;
    std::unique_ptr<DescriptorWatch> watch_;
    std::function<void()> onLost_;
};

} // namespace kelvora
