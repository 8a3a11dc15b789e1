// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

namespace kelvora {

/// Whether the session opens the program at login. Main thread only.
class LoginItem {
public:
    virtual ~LoginItem() = default;

    /// Also what the user changed outside of the program. Cheap enough to be asked again and again.
    [[nodiscard]] virtual bool isEnabled() = 0;
    /// What a person is told when it could not be changed, in UTF-8; absent when it was.
    [[nodiscard]] virtual std::optional<std::string> setEnabled(bool isEnabled) = 0;
};

} // namespace kelvora
