// SPDX-License-Identifier: MIT
#pragma once

namespace kelvora {

/// What the desktop lets this program do. Main thread only.
class Permissions {
public:
    virtual ~Permissions() = default;

    /// May this program act on other applications (post events)?
    [[nodiscard]] virtual bool isAccessibilityTrusted() = 0;
    /// May it watch the session's keyboard?
    [[nodiscard]] virtual bool mayListenToEvents() = 0;
};

} // namespace kelvora
