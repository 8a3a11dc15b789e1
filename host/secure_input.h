// SPDX-License-Identifier: MIT
#pragma once

namespace kelvora {

/// Whether what is typed now is secret. Main thread only.
class SecureInput {
public:
    virtual ~SecureInput() = default;

    /// True while the keys go into a password field, as far as the desktop tells.
    [[nodiscard]] virtual bool isSecureEventInputEnabled() const = 0;
};

} // namespace kelvora
