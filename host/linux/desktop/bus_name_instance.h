// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/desktop/main_loop_bus.h"
#include "host/log.h"
#include "host/single_instance.h"

#include <functional>
#include <memory>
#include <utility>

namespace kelvora {

/// The running copy is whoever owns the program's name on the session bus: a newer copy takes the
/// name over, and the loss of it is how the older one learns. Of the standard interface
/// org.freedesktop.Application only Activate is there. Main thread only.
class BusNameInstance : public SingleInstance {
public:
    BusNameInstance(EventLoop& loop, LogSink& log) : loop_(loop), log_(log) {}

    void setOnReplaced(std::function<void()> handler) override { onReplaced_ = std::move(handler); }
    void setOnReopen(std::function<void()> handler) override { onReopen_ = std::move(handler); }
    void claim() override;

private:
    struct Callbacks; ///< what the bus calls

    void logNoBus();

    EventLoop& loop_;
    LogSink& log_;
    bool isOwner_ = false;
    std::function<void()> onReplaced_;
    std::function<void()> onReopen_;
    std::unique_ptr<MainLoopBus> bus_;
};

} // namespace kelvora
