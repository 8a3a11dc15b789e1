// SPDX-License-Identifier: MIT
#pragma once

#include "tests/host/desktop/temporary_directory.h"
#include "tests/host/x11/poll_loop.h"
#include "tests/support/real_desktop/child_process.h"
#include "tests/support/real_desktop/wait_until.h"

#include <cstdio>
#include <string>
#include <vector>

namespace kelvora {

/// A message bus of the test's own, which this process takes for its session's and the system's.
class PrivateBus {
public:
    PrivateBus()
        : daemon_(std::vector<std::string>{"dbus-daemon", "--session", "--nofork", "--nopidfile",
                                           "--print-address=1",
                                           "--address=unix:path=" + (files_.path / "bus").string()},
                  {.environment = {{"PATH", std::getenv("PATH")}},
                   .outputFile = files_.path / "address"}),
          session_("DBUS_SESSION_BUS_ADDRESS", address().c_str()),
          system_("DBUS_SYSTEM_BUS_ADDRESS", address().c_str()) {
        if (!real::waitUntil([this] { return files_.read("address").ends_with('\n'); })) {
            std::fprintf(stderr, "dbus-daemon does not start\n");
            std::abort();
        }
    }

private:
    [[nodiscard]] std::string address() const {
        return "unix:path=" + (files_.path / "bus").string();
    }

    TemporaryDirectory files_;
    real::ChildProcess daemon_;
    ScopedVariable session_;
    ScopedVariable system_;
};

/// Turns the loop until the condition holds; false when it never does.
template <typename Condition>
[[nodiscard]] bool turnUntil(PollLoop& loop, const Condition& condition) {
    return real::waitUntil([&] {
        loop.turn(std::chrono::milliseconds(5));
        return condition();
    });
}

} // namespace kelvora
