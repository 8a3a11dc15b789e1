// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/event_loop.h"

namespace kelvora {

/// The loop of the process's QCoreApplication, which exists before and after it.
class QtEventLoop : public EventLoop {
public:
    [[nodiscard]] std::unique_ptr<DescriptorWatch>
    watchReadable(int descriptor, std::function<void()> onReadable) override;
};

} // namespace kelvora
