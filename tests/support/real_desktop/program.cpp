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

} // namespace

Program::Program(RealDesktop& desktop, const std::filesystem::path& executable, Start start)
    : Program(desktop, executable, start, desktop.environment()) {}

Program::Program(RealDesktop& desktop, const std::filesystem::path& executable, Start start,
                 const Environment& environment)
    : logFile_(desktop.newFile("program-log")),
      process_({executable.string()},
               {.environment = withLog(environment), .outputFile = logFile_}) {
    if (start == Start::asItIs) {
        return;
    }
    const bool isDecided = waitUntil([this] { return isListening() || !process_.isRunning(); },
                                     defaultDeadline, std::chrono::microseconds(500));
    if (!isDecided || !isListening()) {
        std::fprintf(stderr, "the program does not listen:\n%s\n", log().c_str());
        std::abort();
    }
}

bool Program::logContains(const std::string& text) const {
    return log().find(text) != std::string::npos;
}

} // namespace kelvora::real
