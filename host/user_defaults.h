// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kelvora {

/// The user's settings: typed values by key, kept over restarts. Texts are UTF-8. Main thread only.
class UserDefaults {
public:
    virtual ~UserDefaults() = default;

    // Absent when the key has no value or one of another type. A text is never taken for a number
    // or a Boolean, nor they for a text. Reading stores nothing.

    /// A stored Boolean, or a stored number that is 0 or 1.
    [[nodiscard]] virtual std::optional<bool> boolean(std::string_view key) = 0;
    /// A stored number, or 0 or 1 for a Boolean. Finite.
    [[nodiscard]] virtual std::optional<double> number(std::string_view key) = 0;
    [[nodiscard]] virtual std::optional<std::string> string(std::string_view key) = 0;

    // What cannot be written holds as long as the program runs, and is tried again.

    virtual void setBoolean(std::string_view key, bool value) = 0;
    /// A value that is not finite is not stored.
    virtual void setNumber(std::string_view key, double value) = 0;
    virtual void setString(std::string_view key, std::string_view value) = 0;
};

} // namespace kelvora
