// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <span>

namespace kelvora {

/// Gives slave keyboards the keymap that the core keyboard has now. A change of the keymap reaches
/// only the slaves that are attached at that moment; one that was cut off would bring the old
/// keymap back with its next key. Opens a connection of its own; without one it does nothing.
void copyCoreKeymap(const char* display, std::span<const std::uint16_t> slaveIds);

} // namespace kelvora
