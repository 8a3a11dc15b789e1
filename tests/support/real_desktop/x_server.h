// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/real_desktop/child_process.h"

#include <memory>
#include <string>
#include <vector>

namespace kelvora::real {

/// An X server of the test's own, without a screen, gone with this object.
class XServer {
public:
    /// Returns once the server takes connections. Aborts the test program when it does not start.
    explicit XServer(const std::vector<std::string>& options = {});

    /// What belongs into DISPLAY, for example ":7".
    [[nodiscard]] const std::string& display() const { return display_; }
    /// Ends the server at once, as a crash would.
    void kill();

private:
    std::string display_;
    std::unique_ptr<ChildProcess> process_;
};

} // namespace kelvora::real
