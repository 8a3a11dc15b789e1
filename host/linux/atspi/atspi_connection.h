// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/atspi/bus_connection.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace kelvora {

/// Names of the accessibility bus (AT-SPI 2).
namespace atspi {
inline constexpr const char* accessible = "org.a11y.atspi.Accessible";
inline constexpr const char* application = "org.a11y.atspi.Application";
inline constexpr const char* text = "org.a11y.atspi.Text";
inline constexpr const char* editableText = "org.a11y.atspi.EditableText";

/// The root of all applications.
inline const AtspiReference registryRoot{"org.a11y.atspi.Registry",
                                         "/org/a11y/atspi/accessible/root"};
/// The reference to nothing.
inline constexpr const char* nullPath = "/org/a11y/atspi/null";
} // namespace atspi

/// Numbers of the states (AtspiStateType) that are asked for.
enum class AtspiState : std::uint32_t {
    active = 1,
    defunct = 6,
    editable = 7,
    enabled = 8,
    focused = 12,
    multiLine = 17,
    sensitive = 24,
    showing = 25,
    singleLine = 26,
    visible = 30,
    managesDescendants = 31,
    readOnly = 43,
};

/// The states of an object at one moment.
class AtspiStates {
public:
    AtspiStates() = default;
    explicit AtspiStates(const std::vector<std::uint32_t>& words);

    [[nodiscard]] bool has(AtspiState state) const {
        return (bits_ >> static_cast<std::uint32_t>(state) & 1U) != 0;
    }

private:
    std::uint64_t bits_ = 0;
};

/// A connection to the session's accessibility bus, which is started when it does not run. Where
/// there is no session bus, or no accessibility on it, null. Any thread; the connection itself is
/// for one at a time. `AT_SPI_BUS_ADDRESS` is followed when set.
[[nodiscard]] std::unique_ptr<BusConnection> openAtspiConnection();

// The questions that several parts ask an object.
[[nodiscard]] BusReply<AtspiStates> readStates(BusConnection& connection,
                                               const AtspiReference& object);
/// An AtspiRole number.
[[nodiscard]] BusReply<std::uint32_t> readRole(BusConnection& connection,
                                               const AtspiReference& object);
/// Full names of the interfaces, such as "org.a11y.atspi.Text".
[[nodiscard]] BusReply<std::vector<std::string>> readInterfaces(BusConnection& connection,
                                                                const AtspiReference& object);

} // namespace kelvora
