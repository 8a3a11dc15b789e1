// SPDX-License-Identifier: MIT
#pragma once

namespace kelvora {

/// What the desktop lets this program do. Main thread only. The checks show nothing to the user and
/// are cheap enough to be asked again and again.
class Permissions {
public:
    virtual ~Permissions() = default;

    /// May this program act on other applications (post events)?
    [[nodiscard]] virtual bool isAccessibilityTrusted() = 0;
    /// May it watch the session's keyboard?
    [[nodiscard]] virtual bool mayListenToEvents() = 0;

    // Show the desktop's own prompt for the permission, where it has one and the permission is
    // missing. The answer is not awaited: the checks tell it.

    virtual void requestAccessibilityTrust() = 0;
    virtual void requestListeningToEvents() = 0;
};

} // namespace kelvora
