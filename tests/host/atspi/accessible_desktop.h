// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/real_desktop/real_desktop.h"

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace kelvora {

/// A session whose bus this process finds as its own.
struct AccessibleDesktop : real::RealDesktop {
    AccessibleDesktop() { setenv("DBUS_SESSION_BUS_ADDRESS", busAddress().c_str(), 1); }
    std::unique_ptr<real::ChildProcess> start(const std::vector<std::string>& command) {
        return std::make_unique<real::ChildProcess>(
            command, real::ChildProcess::Options{.environment = environment()});
    }
};

} // namespace kelvora
