// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/atspi/bus_connection.h"

#include <memory>
#include <optional>
#include <string>
#include <sys/types.h>

namespace kelvora::real {

/// Switches accessibility on for the session on this bus; false as long as its service is not
/// there.
[[nodiscard]] bool enableAccessibility(const std::string& sessionBusAddress);

/// The text that a program shows to assistive technology.
struct AccessibleText {
    /// Looks for the editable text that has the keyboard focus in a program; absent as long as
    /// there is none.
    [[nodiscard]] static std::unique_ptr<AccessibleText> find(const std::string& sessionBusAddress,
                                                              pid_t process);

    /// The whole text in UTF-8; absent when the program does not answer.
    [[nodiscard]] std::optional<std::string> text() const;

    std::unique_ptr<BusConnection> connection;
    AtspiReference object;
};

} // namespace kelvora::real
