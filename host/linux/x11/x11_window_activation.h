// SPDX-License-Identifier: MIT
#pragma once

#include "host/window_activation.h"

#include <string>
#include <utility>

namespace kelvora {

/// Asks the window manager as a task bar does, with the server's present time.
class X11WindowActivation final : public WindowActivation {
public:
    /// `display` as in DISPLAY.
    explicit X11WindowActivation(std::string display) : display_(std::move(display)) {}

    void bringToFront(std::uint64_t window) override;

private:
    std::string display_;
};

} // namespace kelvora
