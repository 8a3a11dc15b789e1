// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace kelvora {

/// The server's 32-bit millisecond clock, which starts over every 49.7 days, made into seconds that
/// go on. Events may come slightly out of order.
class X11Time {
public:
    [[nodiscard]] double seconds(std::uint32_t milliseconds) {
        total_ += static_cast<std::int32_t>(milliseconds - last_);
        last_ = milliseconds;
        return static_cast<double>(total_) / 1000.0;
    }

private:
    std::uint32_t last_ = 0;
    std::int64_t total_ = 0;
};

} // namespace kelvora
