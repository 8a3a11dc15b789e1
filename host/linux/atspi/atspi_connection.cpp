// SPDX-License-Identifier: MIT
#include "host/linux/atspi/atspi_connection.h"

#include <cstdlib>

namespace kelvora {

AtspiStates::AtspiStates(const std::vector<std::uint32_t>& words) {
    if (!words.empty())
        bits_ = words[0];
    if (words.size() > 1)
        bits_ |= std::uint64_t{words[1]} << 32U;
}

std::unique_ptr<BusConnection> openAtspiConnection() {
    if (const char* const address = std::getenv("AT_SPI_BUS_ADDRESS"); address && *address != '\0')
        return BusConnection::open(address);
    const std::unique_ptr<BusConnection> session = BusConnection::openSession();
    if (!session)
        return nullptr;
    const auto address =
        session->call<std::string>({"org.a11y.Bus", "/org/a11y/bus"}, "org.a11y.Bus", "GetAddress");
    if (!address || address.value.empty())
        return nullptr;
    return BusConnection::open(address.value);
}

BusReply<AtspiStates> readStates(BusConnection& connection, const AtspiReference& object) {
    const auto reply =
        connection.call<std::vector<std::uint32_t>>(object, atspi::accessible, "GetState");
    return {reply.error, AtspiStates(reply.value)};
}

BusReply<std::uint32_t> readRole(BusConnection& connection, const AtspiReference& object) {
    return connection.call<std::uint32_t>(object, atspi::accessible, "GetRole");
}

BusReply<std::vector<std::string>> readInterfaces(BusConnection& connection,
                                                  const AtspiReference& object) {
    return connection.call<std::vector<std::string>>(object, atspi::accessible, "GetInterfaces");
}

} // namespace kelvora
