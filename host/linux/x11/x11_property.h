// SPDX-License-Identifier: MIT
#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kelvora {

struct X11AtomRequest {
    std::string_view name;
    xcb_atom_t* atom;
};

/// Fills in the atoms of these names, all in one wait; those that the server does not give stay as
/// they are.
void internAtoms(xcb_connection_t* connection, std::initializer_list<X11AtomRequest> requests);

// Window properties as other programs set them: anything may be in them. Each call waits for the
// server; a window or a server that is gone gives the same result as a property that is not there.

/// The bytes of a property of 8-bit units, of any type, not necessarily UTF-8 and not ended by a
/// NUL. Absent when there is none or it is longer than `maximumBytes`.
[[nodiscard]] std::optional<std::string> readTextProperty(xcb_connection_t* connection,
                                                          xcb_window_t window, xcb_atom_t property,
                                                          std::uint32_t maximumBytes);

/// The first `maximumItems` items of a property of 32-bit units. Absent when there is none or it is
/// not of that type.
[[nodiscard]] std::optional<std::vector<std::uint32_t>>
readListProperty(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t property,
                 xcb_atom_t type, std::uint32_t maximumItems);

} // namespace kelvora
