// SPDX-License-Identifier: MIT
#include "tests/support/real_desktop/accessibility_bus.h"

#include "host/linux/atspi/atspi_connection.h"

namespace kelvora::real {

namespace {

using References = std::vector<AtspiReference>;

constexpr int deepestLevel = 24;
constexpr int attempts = 4; // a busy program may need more than one call's time
const AtspiReference accessibilityService{"org.a11y.Bus", "/org/a11y/bus"};

/// The bus of its own that accessibility has; null as long as there is none.
std::unique_ptr<BusConnection> connectToAccessibility(BusConnection& session) {
    const auto address =
        session.call<std::string>(accessibilityService, "org.a11y.Bus", "GetAddress");
    return address ? BusConnection::open(address.value) : nullptr;
}

BusReply<References> childrenOf(BusConnection& connection, const AtspiReference& object) {
    return connection.call<References>(object, atspi::accessible, "GetChildren");
}

BusReply<std::string> textOf(BusConnection& connection, const AtspiReference& object) {
    BusReply<std::string> reply{BusError::timedOut, {}};
    for (int attempt = 0; attempt < attempts && reply.error == BusError::timedOut; ++attempt)
        reply = connection.call<std::string>(object, atspi::text, "GetText",
                                             {std::int32_t{0}, std::int32_t{-1}});
    return reply;
}

std::optional<AtspiReference> focusedTextIn(BusConnection& connection, const AtspiReference& object,
                                            int level) {
    const AtspiStates states = readStates(connection, object).value;
    if (states.has(AtspiState::focused) && states.has(AtspiState::editable) &&
        textOf(connection, object))
        return object;
    if (level < deepestLevel)
        for (const AtspiReference& child : childrenOf(connection, object).value)
            if (auto found = focusedTextIn(connection, child, level + 1))
                return found;
    return std::nullopt;
}

} // namespace

bool enableAccessibility(const std::string& sessionBusAddress) {
    const auto session = BusConnection::open(sessionBusAddress);
    if (!session || session->setProperty(accessibilityService, "org.a11y.Status", "IsEnabled",
                                         true) != BusError::none)
        return false;
    // A toolkit that starts before the registry answers registers nowhere and never tries again.
    const auto connection = connectToAccessibility(*session);
    return connection && childrenOf(*connection, atspi::registryRoot);
}

std::unique_ptr<AccessibleText> AccessibleText::find(const std::string& sessionBusAddress,
                                                     pid_t process) {
    const auto session = BusConnection::open(sessionBusAddress);
    auto connection = session ? connectToAccessibility(*session) : nullptr;
    if (!connection)
        return nullptr;
    for (const AtspiReference& application : childrenOf(*connection, atspi::registryRoot).value)
        if (connection->processOf(application.busName).value == static_cast<unsigned>(process))
            if (auto found = focusedTextIn(*connection, application, 1))
                return std::make_unique<AccessibleText>(
                    AccessibleText{std::move(connection), std::move(*found)});
    return nullptr;
}

std::optional<std::string> AccessibleText::text() const {
    BusReply<std::string> reply = textOf(*connection, object);
    return reply ? std::optional(std::move(reply.value)) : std::nullopt;
}

} // namespace kelvora::real
