// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/real_desktop/child_process.h"
#include "tests/support/real_desktop/real_desktop.h"

#include <filesystem>
#include <optional>
#include <string>

namespace kelvora::real {

/// The program under test, running as its own process.
class Program {
public:
    enum class Start {
        waitUntilListening,
        byUser, ///< the same, as a user starts it, who is shown the preferences
        asItIs, ///< for starts that are expected to fail
    };

    /// `environment` replaces the desktop's own.
    Program(RealDesktop& desktop, const std::filesystem::path& executable,
            Start start = Start::waitUntilListening,
            std::optional<Environment> environment = std::nullopt);

    [[nodiscard]] bool isListening() const { return logContains("Listening for double-Shift"); }
    /// Everything that it has written to its standard output and error.
    [[nodiscard]] std::string log() const { return fileContent(logFile_); }
    [[nodiscard]] bool logContains(const std::string& text) const {
        return log().find(text) != std::string::npos;
    }
    [[nodiscard]] ChildProcess& process() { return process_; }

private:
    std::filesystem::path logFile_;
    ChildProcess process_;
};

} // namespace kelvora::real
