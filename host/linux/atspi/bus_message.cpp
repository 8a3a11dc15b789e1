// SPDX-License-Identifier: MIT
#include "host/linux/atspi/bus_message.h"

#include <cerrno>
#include <string_view>
#include <type_traits>

namespace kelvora {
namespace {

bool append(sd_bus_message* message, const BusValue& value) {
    return std::visit(
        [message](const auto& alternative) {
            using Alternative = std::decay_t<decltype(alternative)>;
            if constexpr (std::is_same_v<Alternative, bool>) {
                const int number = alternative ? 1 : 0;
                return sd_bus_message_append_basic(message, SD_BUS_TYPE_BOOLEAN, &number) >= 0;
            } else if constexpr (std::is_same_v<Alternative, std::int32_t>) {
                return sd_bus_message_append_basic(message, SD_BUS_TYPE_INT32, &alternative) >= 0;
            } else if constexpr (std::is_same_v<Alternative, std::uint32_t>) {
                return sd_bus_message_append_basic(message, SD_BUS_TYPE_UINT32, &alternative) >= 0;
            } else if constexpr (std::is_same_v<Alternative, std::string>) {
                // Text ends at its first NUL there: what is behind would silently be lost.
                return alternative.find('\0') == std::string::npos &&
                       sd_bus_message_append_basic(message, SD_BUS_TYPE_STRING,
                                                   alternative.c_str()) >= 0;
            } else if constexpr (std::is_same_v<Alternative, std::vector<std::string>>) {
                bool good = sd_bus_message_open_container(message, SD_BUS_TYPE_ARRAY, "s") >= 0;
                for (const std::string& text : alternative)
                    good = good && append(message, text);
                return good && sd_bus_message_close_container(message) >= 0;
            } else if constexpr (std::is_same_v<Alternative, AtspiReference>) {
                return sd_bus_message_append(message, "(so)", alternative.busName.c_str(),
                                             alternative.path.c_str()) >= 0;
            } else {
                return false;
            }
        },
        value);
}

template <typename Value>
bool readArray(sd_bus_message* message, const char* elementType, std::vector<Value>& values) {
    if (sd_bus_message_enter_container(message, SD_BUS_TYPE_ARRAY, elementType) <= 0)
        return false;
    while (sd_bus_message_at_end(message, 0) == 0) {
        if (!readValue(message, values.emplace_back()))
            return false;
    }
    return sd_bus_message_exit_container(message) >= 0;
}

template <typename Value>
BusValue readAs(sd_bus_message* message) {
    Value value{};
    if (!readValue(message, value))
        return {};
    return value;
}

/// The next value, std::monostate for what BusValue does not hold; the entries of a dictionary go
/// to `properties`.
BusValue readAny(sd_bus_message* message, std::map<std::string, BusValue>* properties) {
    char type = 0;
    const char* contents = nullptr;
    if (sd_bus_message_peek_type(message, &type, &contents) <= 0)
        return {};
    const std::string_view inside = contents != nullptr ? contents : "";
    switch (type) {
    case SD_BUS_TYPE_BOOLEAN:
        return readAs<bool>(message);
    case SD_BUS_TYPE_INT32:
        return readAs<std::int32_t>(message);
    case SD_BUS_TYPE_UINT32:
        return readAs<std::uint32_t>(message);
    case SD_BUS_TYPE_STRING:
        return readAs<std::string>(message);
    case SD_BUS_TYPE_STRUCT:
        if (inside == "so")
            return readAs<AtspiReference>(message);
        break;
    case SD_BUS_TYPE_VARIANT: {
        if (sd_bus_message_enter_container(message, type, nullptr) <= 0)
            return {};
        BusValue value = readAny(message, nullptr);
        if (sd_bus_message_exit_container(message) < 0)
            return {};
        return value;
    }
    case SD_BUS_TYPE_ARRAY:
        if (inside == "s")
            return readAs<std::vector<std::string>>(message);
        if (inside == "{sv}" && properties != nullptr) {
            static_cast<void>(sd_bus_message_enter_container(message, type, "{sv}"));
            while (sd_bus_message_enter_container(message, SD_BUS_TYPE_DICT_ENTRY, "sv") > 0) {
                std::string key;
                if (!readValue(message, key))
                    return {};
                properties->insert_or_assign(key, readAny(message, nullptr));
                if (sd_bus_message_exit_container(message) < 0)
                    return {};
            }
            static_cast<void>(sd_bus_message_exit_container(message));
            return {};
        }
        break;
    default:
        break;
    }
    static_cast<void>(sd_bus_message_skip(message, nullptr));
    return {};
}

std::string textOrNothing(const char* text) {
    return text != nullptr ? text : "";
}

} // namespace

BusError errorOf(int result, const sd_bus_error& error) {
    if (result >= 0)
        return BusError::none;
    if (error.name != nullptr) {
        constexpr std::string_view prefix = "org.freedesktop.DBus.Error.";
        std::string_view name = error.name;
        if (name.substr(0, prefix.size()) == prefix)
            name.remove_prefix(prefix.size());
        for (const std::string_view gone :
             {"ServiceUnknown", "NameHasNoOwner", "UnknownObject", "NoReply", "Disconnected"}) {
            if (name == gone)
                return BusError::gone;
        }
        for (const std::string_view unsupported :
             {"UnknownMethod", "UnknownInterface", "UnknownProperty", "NotSupported"}) {
            if (name == unsupported)
                return BusError::unsupported;
        }
        if (name == "Timeout" || name == "TimedOut")
            return BusError::timedOut;
    }
    switch (-result) {
    case ETIMEDOUT:
        return BusError::timedOut;
    case ENOTCONN:
    case ECONNRESET:
    case ECONNREFUSED:
    case EPIPE:
    case ESHUTDOWN:
        return BusError::lost;
    default:
        return BusError::refused;
    }
}

MessageHandle newCall(sd_bus* bus, const AtspiReference& object, const char* interface,
                      const char* method, const std::vector<BusValue>& arguments) {
    sd_bus_message* raw = nullptr;
    if (sd_bus_message_new_method_call(bus, &raw, object.busName.c_str(), object.path.c_str(),
                                       interface, method) < 0)
        return nullptr;
    MessageHandle message(raw);
    // Accessibility never starts a program that is not there.
    const bool isService = object.busName.substr(0, 1) != ":";
    if (!isService && sd_bus_message_set_auto_start(raw, 0) < 0)
        return nullptr;
    for (const BusValue& argument : arguments) {
        if (!append(raw, argument))
            return nullptr;
    }
    return message;
}

MessageHandle newPropertySet(sd_bus* bus, const AtspiReference& object, const char* interface,
                             const char* name, bool value) {
    MessageHandle message = newCall(bus, object, propertiesInterface, "Set",
                                    {std::string(interface), std::string(name)});
    if (!message || sd_bus_message_append(message.get(), "v", "b", value ? 1 : 0) < 0)
        return nullptr;
    return message;
}

bool readValue(sd_bus_message* /*message*/, BusNothing& /*value*/) {
    return true;
}

bool readValue(sd_bus_message* message, bool& value) {
    int number = 0;
    const bool good = sd_bus_message_read_basic(message, SD_BUS_TYPE_BOOLEAN, &number) > 0;
    value = number != 0;
    return good;
}

bool readValue(sd_bus_message* message, std::int32_t& value) {
    return sd_bus_message_read_basic(message, SD_BUS_TYPE_INT32, &value) > 0;
}

bool readValue(sd_bus_message* message, std::uint32_t& value) {
    return sd_bus_message_read_basic(message, SD_BUS_TYPE_UINT32, &value) > 0;
}

bool readValue(sd_bus_message* message, std::string& value) {
    const char* text = nullptr;
    if (sd_bus_message_read_basic(message, SD_BUS_TYPE_STRING, &text) <= 0)
        return false;
    value = text;
    return true;
}

bool readValue(sd_bus_message* message, AtspiReference& value) {
    const char* name = nullptr;
    const char* path = nullptr;
    if (sd_bus_message_read(message, "(so)", &name, &path) <= 0)
        return false;
    value = {name, path};
    return true;
}

bool readValue(sd_bus_message* message, std::pair<std::int32_t, std::int32_t>& value) {
    return readValue(message, value.first) && readValue(message, value.second);
}

bool readValue(sd_bus_message* message, std::vector<std::uint32_t>& value) {
    return readArray(message, "u", value);
}

bool readValue(sd_bus_message* message, std::vector<std::string>& value) {
    return readArray(message, "s", value);
}

bool readValue(sd_bus_message* message, std::vector<AtspiReference>& value) {
    return readArray(message, "(so)", value);
}

BusSignal readSignal(sd_bus_message* message) {
    BusSignal signal;
    signal.sender = textOrNothing(sd_bus_message_get_sender(message));
    signal.path = textOrNothing(sd_bus_message_get_path(message));
    signal.interface = textOrNothing(sd_bus_message_get_interface(message));
    signal.member = textOrNothing(sd_bus_message_get_member(message));
    while (sd_bus_message_at_end(message, 1) == 0)
        signal.arguments.push_back(readAny(message, &signal.properties));
    return signal;
}

} // namespace kelvora
