// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/atspi/bus_connection.h"

#include <systemd/sd-bus.h>

// How values and errors stand in the messages of the bus library. For the .cpp files of the bus.
namespace kelvora {

struct MessageDeleter {
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using MessageHandle = std::unique_ptr<sd_bus_message, MessageDeleter>;

inline constexpr const char* propertiesInterface = "org.freedesktop.DBus.Properties";

/// What a call came to that gave `result` (negative: an errno) and, from the other side, `error`.
[[nodiscard]] BusError errorOf(int result, const sd_bus_error& error);

/// A value that the message holds inside a variant.
template <typename Value>
struct InVariant {
    Value value{};
};

/// Null when the connection is gone or a value cannot be sent (text that is not UTF-8).
[[nodiscard]] MessageHandle newCall(sd_bus* bus, const AtspiReference& object,
                                    const char* interface, const char* method,
                                    const std::vector<BusValue>& arguments);
[[nodiscard]] MessageHandle newPropertySet(sd_bus* bus, const AtspiReference& object,
                                           const char* interface, const char* name, bool value);

// Each takes the next value from the message; false when it is of another type.
[[nodiscard]] bool readValue(sd_bus_message* message, BusNothing& value);
[[nodiscard]] bool readValue(sd_bus_message* message, bool& value);
[[nodiscard]] bool readValue(sd_bus_message* message, std::int32_t& value);
[[nodiscard]] bool readValue(sd_bus_message* message, std::uint32_t& value);
[[nodiscard]] bool readValue(sd_bus_message* message, std::string& value);
[[nodiscard]] bool readValue(sd_bus_message* message, AtspiReference& value);
[[nodiscard]] bool readValue(sd_bus_message* message, std::pair<std::int32_t, std::int32_t>& value);
[[nodiscard]] bool readValue(sd_bus_message* message, std::vector<std::uint32_t>& value);
[[nodiscard]] bool readValue(sd_bus_message* message, std::vector<std::string>& value);
[[nodiscard]] bool readValue(sd_bus_message* message, std::vector<AtspiReference>& value);

template <typename Value>
[[nodiscard]] bool readValue(sd_bus_message* message, InVariant<Value>& variant) {
    return sd_bus_message_enter_container(message, SD_BUS_TYPE_VARIANT, nullptr) > 0 &&
           readValue(message, variant.value);
}

[[nodiscard]] BusSignal readSignal(sd_bus_message* message);

} // namespace kelvora
