// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/atspi/atspi_connection.h"
#include "host/linux/atspi/atspi_focus_tracker.h"

namespace kelvora {

// What is asked an object that has, or had, the focus; each waits for a short time only.

[[nodiscard]] BusReply<AtspiObjectKind> askKind(BusConnection& connection,
                                                const AtspiReference& object);
[[nodiscard]] BusReply<bool> askIsFocused(BusConnection& connection, const AtspiReference& object);

} // namespace kelvora
