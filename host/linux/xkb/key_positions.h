// SPDX-License-Identifier: MIT
#pragma once

#include "host/key_codes.h"

#include <optional>
#include <string_view>

namespace kelvora {

/// The virtual key code of the key position that XKB keycode files call `name` ("AC01", "LFSH",
/// ...; without angle brackets). The names of modifier keys give their usual positions, whatever
/// the keys do in a keymap. Absent for positions without a code.
[[nodiscard]] std::optional<KeyCode> keyCodeForKeyName(std::string_view name);

/// The usual XKB name of a position. Absent for codes that no PC key has.
[[nodiscard]] std::optional<std::string_view> keyNameForKeyCode(KeyCode keyCode);

} // namespace kelvora
