// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/event_loop.h"

namespace kelvora {

/// The loop of the process's QCoreApplication, which exists before and after it.
class QtEventLoop : public EventLoop {
public:
    QtEventLoop() = default;
    QtEventLoop(const QtEventLoop&) = delete;
    QtEventLoop& operator=(const QtEventLoop&) = delete;
    ~QtEventLoop() override;

    [[nodiscard]] std::unique_ptr<DescriptorWatch>
    watchReadable(int descriptor, std::function<void()> onReadable) override;
};

} // namespace kelvora
