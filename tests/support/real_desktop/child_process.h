// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace kelvora::real {

using Environment = std::map<std::string, std::string>;

/// A program that runs for as long as this object lives, in a process group of its own. It dies
/// with the test, also when the test crashes.
class ChildProcess {
public:
    struct Options {
        Environment environment{};
        /// Where standard output and standard error go; thrown away when empty.
        std::filesystem::path outputFile{};
        /// Stays open in the child under the same number; -1 for none.
        int inheritedDescriptor = -1;
    };

    /// Runs `arguments[0]`, looked up in PATH. Aborts the test program when it cannot be run.
    ChildProcess(std::vector<std::string> arguments, const Options& options);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    [[nodiscard]] pid_t pid() const { return pid_; }
    [[nodiscard]] bool isRunning();
    /// The exit code (128 + the signal's number when a signal ended it); absent when it still runs
    /// after `deadline`.
    [[nodiscard]] std::optional<int> waitForExit(std::chrono::milliseconds deadline);
    void sendSignal(int signal) const;

private:
    pid_t pid_ = -1;
    std::optional<int> exitCode_;
};

/// The whole content of a file; empty when it cannot be read.
[[nodiscard]] std::string fileContent(const std::filesystem::path& file);

} // namespace kelvora::real
