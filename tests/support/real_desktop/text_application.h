// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/real_desktop/wait_until.h"
#include "tests/support/real_desktop/windows.h"

#include <string>

namespace kelvora::real {

/// A real program with a text that the keyboard goes to.
class TextApplication {
public:
    virtual ~TextApplication() = default;

    [[nodiscard]] virtual std::string name() const = 0;
    /// The line being edited, UTF-8, as read back from the application.
    [[nodiscard]] virtual std::string text() = 0;
    /// Brings the application forward and ends with an empty line to type into, the first layout
    /// active. False when it does not get there.
    [[nodiscard]] virtual bool beginFreshLine() = 0;
    [[nodiscard]] virtual WindowId window() const = 0;

    /// Waits until the text is `expected` and has stayed so for a while; false when it is not.
    [[nodiscard]] bool
    showsText(const std::string& expected,
              std::chrono::milliseconds settle = std::chrono::milliseconds(250)) {
        const auto isShown = [&] { return text() == expected; };
        return waitUntil(isShown, std::chrono::seconds(4)) && staysTrue(isShown, settle);
    }
};

} // namespace kelvora::real
