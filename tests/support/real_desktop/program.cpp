// SPDX-License-Identifier: MIT
#include "tests/support/real_desktop/program.h"

#include "tests/support/real_desktop/wait_until.h"

#include <cstdio>
#include <cstdlib>

namespace kelvora::real {

namespace {

/// With it the log is written to standard error, whatever the machine's journal is.
Environment withLog(Environment environment) {
    environment.try_emplace("KELVORA_LOG", "info");
    return environment;
}

std::vector<std::string> command(const std::filesystem::path& executable, Program::Start start) {
    if (start == Program::Start::byUser)
        return {executable.string()};
    // As at login: without a window, which would take the focus.
    return {executable.string(), "--login-launch"};
}

} // namespace

Program::Program(RealDesktop& desktop, const std::filesystem::path& executable, Start start,
                 std::optional<Environment> environment)
    : logFile_(desktop.newFile("program-log")),
      process_(command(executable, start),
               {.environment = withLog(environment.value_or(desktop.environment())),
                .outputFile = logFile_}) {
    if (start == Start::asItIs)
        return;
    static_cast<void>(waitUntil([this] { return isListening() || !process_.isRunning(); },
                                defaultDeadline, std::chrono::microseconds(500)));
    if (!isListening()) {
        std::fprintf(stderr, "the program does not listen:\n%s\n", log().c_str());
        std::abort();
    }
}

} // namespace kelvora::real
