// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <sys/types.h>

// NOLINTNEXTLINE(bugprone-reserved-identifier): the name that its own header declares
typedef struct _GDBusConnection GDBusConnection;

namespace kelvora::real {

/// Switches accessibility on for the session on this bus; false as long as its service is not
/// there.
[[nodiscard]] bool enableAccessibility(const std::string& sessionBusAddress);

/// The text that a program shows to assistive technology.
class AccessibleText {
public:
    /// Looks for the editable text that has the keyboard focus in a program; absent as long as
    /// there is none.
    [[nodiscard]] static std::unique_ptr<AccessibleText> find(const std::string& sessionBusAddress,
                                                              pid_t process);

    ~AccessibleText();
    AccessibleText(const AccessibleText&) = delete;
    AccessibleText& operator=(const AccessibleText&) = delete;

    /// The whole text in UTF-8; absent when the program does not answer.
    [[nodiscard]] std::optional<std::string> text() const;

private:
    AccessibleText() = default;

    GDBusConnection* connection_ = nullptr;
    std::string owner_; // the program's name on the bus
    std::string path_;
};

} // namespace kelvora::real
