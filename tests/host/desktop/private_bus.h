// SPDX-License-Identifier: MIT
#pragma once

#include "tests/host/desktop/temporary_directory.h"
#include "tests/host/x11/poll_loop.h"
#include "tests/support/real_desktop/child_process.h"
#include "tests/support/real_desktop/wait_until.h"

#include <gtest/gtest.h>

#include <string>

namespace kelvora {

/// A message bus of the test's own, which this process takes for its session's and the system's.
class PrivateBus {
public:
    PrivateBus() {
        EXPECT_TRUE(real::waitUntil([this] { return files_.read("address").ends_with('\n'); }));
    }

private:
    TemporaryDirectory files_;
    const std::string address_ = "unix:path=" + (files_.path / "bus").string();
    real::ChildProcess daemon_{
        {"dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address=1",
         "--address=" + address_},
        {.environment = {{"PATH", std::getenv("PATH")}}, .outputFile = files_.path / "address"}};
    ScopedVariable session_{"DBUS_SESSION_BUS_ADDRESS", address_.c_str()};
    ScopedVariable system_{"DBUS_SYSTEM_BUS_ADDRESS", address_.c_str()};
};

/// Turns the loop until the condition holds; false when it does not by then.
template <typename Condition>
[[nodiscard]] bool turnUntil(PollLoop& loop, const Condition& condition,
                             std::chrono::milliseconds deadline = real::defaultDeadline) {
    return real::waitUntil(
        [&] {
            loop.turn(std::chrono::milliseconds(5));
            return condition();
        },
        deadline);
}

} // namespace kelvora
