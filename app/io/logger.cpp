// SPDX-License-Identifier: MIT
#include "app/io/logger.h"

#include <cassert>
#include <cstddef>

namespace kelvora {

std::string LogArgument::text() const {
    switch (kind_) {
    case Kind::privateString:
        return "<private>";
    case Kind::boolean:
        return value_ != 0 ? "true" : "false";
    case Kind::integer:
        return std::to_string(value_);
    }
    return {};
}

std::string formatLogLine(std::string_view format, std::initializer_list<LogArgument> arguments) {
    std::string line;
    auto argument = arguments.begin();
    std::size_t position = 0;
    while (position < format.size()) {
        const std::size_t conversion = format.find('%', position);
        line += format.substr(position, conversion - position);
        if (conversion == std::string_view::npos) {
            break;
        }
        // The kind of the argument is known from its type, so that the conversion's own letter
        // only marks where it ends.
        const std::size_t end =
            format.find_first_of("sdu", format.find_first_of("}sdu", conversion));
        assert(end != std::string_view::npos && argument != arguments.end());
        line += argument->text();
        ++argument;
        position = end + 1;
    }
    assert(argument == arguments.end());
    return line;
}

void Logger::write(LogLevel level, std::string_view format,
                   std::initializer_list<LogArgument> arguments) const {
    sink_->write(level, category_, formatLogLine(format, arguments));
}

} // namespace kelvora
