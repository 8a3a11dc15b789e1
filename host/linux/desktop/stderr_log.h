// SPDX-License-Identifier: MIT
#pragma once

#include "host/log.h"

namespace kelvora {

/// Writes lines of at least one level to stderr, each in one piece. Any thread.
class StderrLog : public LogSink {
public:
    explicit StderrLog(LogLevel lowest) : lowest_(lowest) {}
    void write(LogLevel level, std::string_view category, std::string_view message) override;

private:
    LogLevel lowest_;
};

} // namespace kelvora
