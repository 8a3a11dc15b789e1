// SPDX-License-Identifier: MIT
#include "host/linux/desktop/stderr_log.h"

#include <unistd.h>

#include <string>

namespace kelvora {
namespace {

std::string_view nameOf(LogLevel level) {
    switch (level) {
    case LogLevel::debug:
        return "debug";
    case LogLevel::info:
        return "info";
    case LogLevel::error:
        return "error";
    }
    return "";
}

} // namespace

void StderrLog::write(LogLevel level, std::string_view category, std::string_view message) {
    if (level < lowest_)
        return;
    std::string line("kelvora ");
    line.append(nameOf(level)).append(" [").append(category).append("] ");
    line.append(message).append("\n");
    // One call for a line, so that threads do not mix theirs. A closed stderr is nobody's loss.
    [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, line.data(), line.size());
}

} // namespace kelvora
