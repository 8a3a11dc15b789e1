// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/x11/x11_input_sources.h"
#include "tests/support/real_desktop/child_process.h"
#include "tests/support/real_desktop/wait_until.h"
#include "tests/support/real_desktop/x_server.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace kelvora {

/// An X server and the programs that change its layouts.
class LayoutServer {
public:
    void run(const std::vector<std::string>& command) {
        real::ChildProcess program(command,
                                   {{{"PATH", "/usr/bin:/bin"}, {"DISPLAY", display()}}, {}, -1});
        ASSERT_EQ(program.waitForExit(real::defaultDeadline), 0) << command[0];
    }
    void setLayouts(const std::string& layouts, const std::string& variants = "",
                    const std::string& model = "pc105") {
        run({"setxkbmap", "-model", model, "-layout", layouts, "-variant", variants});
    }
    [[nodiscard]] const std::string& display() const { return server_.display(); }
    void kill() { server_.kill(); }

    [[nodiscard]] std::unique_ptr<X11InputSources> inputSources() const {
        return X11InputSources::create(connectX11(display().c_str()));
    }

private:
    real::XServer server_;
};

} // namespace kelvora
