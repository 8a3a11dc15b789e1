// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace kelvora {

/// One of the two privacy permissions that the program needs. A value; any thread.
class PermissionTarget {
public:
    enum Case { inputMonitoring, accessibility };
    static constexpr std::array<Case, 2> allCases{inputMonitoring, accessibility};

    // NOLINTNEXTLINE(google-explicit-constructor): a case is a target
    constexpr PermissionTarget(Case target) : case_(target) {}
    /// Absent unless `text` is exactly a raw value.
    [[nodiscard]] static std::optional<PermissionTarget> fromRawValue(std::string_view text);

    /// For `switch` and comparison.
    constexpr operator Case() const { return case_; }

    [[nodiscard]] std::string_view rawValue() const;
    [[nodiscard]] std::string_view id() const { return rawValue(); }
    [[nodiscard]] std::string_view title() const { return rawValue(); }
    /// The sentence above the list of programs in the system's settings.
    [[nodiscard]] std::string_view description() const;
    /// The anchor of the list's page in the system's settings.
    [[nodiscard]] std::string_view systemSettingsPane() const;

private:
    Case case_;
};

/// The address of a page of the system's privacy settings; absent when no URL has this anchor.
[[nodiscard]] std::optional<std::string> privacyPaneAddress(std::string_view anchor);

} // namespace kelvora
