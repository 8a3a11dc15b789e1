// SPDX-License-Identifier: MIT
#pragma once

#include "host/log.h"

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

namespace kelvora {

/// One argument of a log line. Integers and Booleans are public. A string is private: its content
/// is not even kept here.
class LogArgument {
public:
    LogArgument(const std::convertible_to<std::string_view> auto& /*content*/)
        : kind_(Kind::privateString) {}
    LogArgument(std::same_as<bool> auto value) : kind_(Kind::boolean), value_(value ? 1 : 0) {}
    LogArgument(std::integral auto value) requires(!std::same_as<decltype(value), bool>)
        : kind_(Kind::integer), value_(static_cast<std::int64_t>(value)) {}

    /// As it stands in the finished line.
    [[nodiscard]] std::string text() const;

private:
    enum class Kind : std::uint8_t { privateString, boolean, integer };

    Kind kind_;
    std::int64_t value_ = 0;
};

/// `format` with its conversions (%s, %ld, %hu, %d, %{bool}d) replaced by the arguments in order.
/// There are as many arguments as conversions.
[[nodiscard]] std::string formatLogLine(std::string_view format,
                                        std::initializer_list<LogArgument> arguments);

/// Writes lines of one category. A small value; any thread. Nothing that a person typed is ever
/// passed to it.
class Logger {
public:
    /// `category` outlives the logger: a literal.
    Logger(LogSink& sink, std::string_view category) : sink_(&sink), category_(category) {}

    template <typename... Arguments>
    void debug(std::string_view format, const Arguments&... arguments) const {
        write(LogLevel::debug, format, {LogArgument(arguments)...});
    }
    template <typename... Arguments>
    void info(std::string_view format, const Arguments&... arguments) const {
        write(LogLevel::info, format, {LogArgument(arguments)...});
    }
    template <typename... Arguments>
    void error(std::string_view format, const Arguments&... arguments) const {
        write(LogLevel::error, format, {LogArgument(arguments)...});
    }

private:
    void write(LogLevel level, std::string_view format,
               std::initializer_list<LogArgument> arguments) const;

    LogSink* sink_;
    std::string_view category_;
};

} // namespace kelvora
