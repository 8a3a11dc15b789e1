// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace kelvora::fuzz {

/// Ends the process, as a finding, unless the property holds.
inline void require(bool holds, const char* property) {
    if (!holds) {
        std::fprintf(stderr, "Does not hold: %s\n", property);
        std::abort();
    }
}

/// The bytes of one run, used up from the front; zeros come after the last.
class Input {
public:
    Input(const std::uint8_t* data, std::size_t size)
        : rest_(reinterpret_cast<const char*>(data), size) {}

    [[nodiscard]] bool isEmpty() const { return rest_.empty(); }
    [[nodiscard]] std::string_view rest() const { return rest_; }

    /// The next bytes, or as many as there are.
    std::string_view bytes(std::size_t count) {
        const std::string_view taken = rest_.substr(0, count);
        rest_.remove_prefix(taken.size());
        return taken;
    }

    template <std::integral Number>
    Number number() {
        Number value{};
        const std::string_view taken = bytes(sizeof value);
        std::copy(taken.begin(), taken.end(), reinterpret_cast<char*>(&value));
        return value;
    }

    std::uint8_t byte() { return number<std::uint8_t>(); }
    bool flag() { return (byte() & 1) != 0; }

    /// Less than `limit`, which is at most 256.
    std::size_t below(std::size_t limit) { return byte() % limit; }

private:
    std::string_view rest_;
};

} // namespace kelvora::fuzz
