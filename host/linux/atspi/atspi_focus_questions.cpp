// SPDX-License-Identifier: MIT
#include "host/linux/atspi/atspi_focus_questions.h"

#include <algorithm>
#include <chrono>

namespace kelvora {
namespace {

constexpr std::uint32_t rolePasswordText = 40; // AtspiRole
constexpr std::chrono::milliseconds longestQuestion{100};

} // namespace

BusReply<AtspiObjectKind> askKind(BusConnection& connection, const AtspiReference& object) {
    connection.setDeadline(BusConnection::Clock::now() + longestQuestion);
    const BusReply<std::uint32_t> role = readRole(connection, object);
    BusReply<AtspiObjectKind> kind{role.error, {}};
    if (role && role.value == rolePasswordText) {
        kind.value = {.isText = true, .isSecret = true};
    } else if (role) {
        const BusReply<std::vector<std::string>> names = readInterfaces(connection, object);
        kind.error = names.error;
        kind.value.isText = std::ranges::find(names.value, atspi::text) != names.value.end();
    }
    connection.clearDeadline();
    return kind;
}

BusReply<bool> askIsFocused(BusConnection& connection, const AtspiReference& object) {
    connection.setDeadline(BusConnection::Clock::now() + longestQuestion);
    const BusReply<AtspiStates> states = readStates(connection, object);
    connection.clearDeadline();
    return {states.error, states.value.has(AtspiState::focused)};
}

} // namespace kelvora
