// SPDX-License-Identifier: MIT
#pragma once

#include "host/accessibility_status.h"
#include "host/linux/desktop/main_loop_bus.h"

#include <functional>
#include <memory>
#include <utility>

namespace kelvora {

/// The switches of org.a11y.Status on the session bus; silent without a bus. Main thread only.
class AtspiStatus final : public AccessibilityStatus {
public:
    explicit AtspiStatus(EventLoop& loop);

    void setOnChanged(std::function<void()> handler) override { onChanged_ = std::move(handler); }

private:
    struct Callbacks; ///< what the bus calls

    std::function<void()> onChanged_;
    std::unique_ptr<MainLoopBus> bus_; ///< null: no session bus
};

} // namespace kelvora
