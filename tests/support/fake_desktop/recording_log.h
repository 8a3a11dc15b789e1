// SPDX-License-Identifier: MIT
#pragma once

#include "host/log.h"

#include <mutex>
#include <string>
#include <vector>

namespace kelvora::fake {

/// Any thread.
class RecordingLog final : public LogSink {
public:
    struct Line {
        LogLevel level = LogLevel::debug;
        std::string category;
        std::string message;
        friend bool operator==(const Line&, const Line&) = default;
    };

    void write(LogLevel level, std::string_view category, std::string_view message) override {
        const std::lock_guard lock(mutex_);
        lines_.push_back({level, std::string(category), std::string(message)});
    }
    [[nodiscard]] std::vector<Line> lines() const {
        const std::lock_guard lock(mutex_);
        return lines_;
    }
    /// The messages of one category and level, in order.
    [[nodiscard]] std::vector<std::string> messages(std::string_view category,
                                                    LogLevel level) const {
        std::vector<std::string> found;
        for (const Line& line : lines())
            if (line.category == category && line.level == level)
                found.push_back(line.message);
        return found;
    }

private:
    mutable std::mutex mutex_;
    std::vector<Line> lines_;
};

} // namespace kelvora::fake
