// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace kelvora {

enum class LogLevel { debug, info, error };

/// Where finished log lines go. Any thread. Private arguments never reach it: they are replaced
/// before (app/io/logger.h).
class LogSink {
public:
    virtual ~LogSink() = default;

    /// `category` and `message` are UTF-8 and hold no line break that the caller did not mean.
    virtual void write(LogLevel level, std::string_view category, std::string_view message) = 0;
};

} // namespace kelvora
