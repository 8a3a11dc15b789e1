// SPDX-License-Identifier: MIT
#pragma once

#include "host/accessibility.h"
#include "host/linux/atspi/atspi_connection.h"

#include <cstdint>

namespace kelvora {

/// What an object with that role (an AtspiRole number) and those states is to somebody who types.
/// `unmarkedText` is for an editable text that says neither that it has one line nor several.
[[nodiscard]] TextRole textRoleOf(std::uint32_t role, AtspiStates states, TextRole unmarkedText);

/// Roles of the texts that a document is made of, each an object of its own.
[[nodiscard]] bool isPartOfDocument(std::uint32_t role);

} // namespace kelvora
