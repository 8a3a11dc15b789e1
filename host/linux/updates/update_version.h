// SPDX-License-Identifier: MIT
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kelvora {

/// A version of a Debian package, [epoch:]upstream[-revision], in the order in which dpkg installs
/// them (deb-version(7)). A small value.
class UpdateVersion {
public:
    /// Absent when `text` is not such a version or longer than 64 characters.
    [[nodiscard]] static std::optional<UpdateVersion> parse(std::string_view text);

    [[nodiscard]] const std::string& text() const { return text_; }

    /// 1.0 and 1.00 are equivalent though they are not the same text.
    friend std::weak_ordering operator<=>(const UpdateVersion& left, const UpdateVersion& right);
    friend bool operator==(const UpdateVersion& left, const UpdateVersion& right) {
        return (left <=> right) == std::weak_ordering::equivalent;
    }

private:
    std::string text_;
    std::uint32_t epoch_ = 0;
    std::string upstream_;
    std::string revision_;
};

} // namespace kelvora
