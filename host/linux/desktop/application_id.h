// SPDX-License-Identifier: MIT
#pragma once

namespace kelvora {

/// The program's name on the session bus and in the log; reverse DNS, as D-Bus wants it.
inline constexpr const char* applicationId = "org.kelvora.Kelvora";
/// The object that org.freedesktop.Application is called on: the identifier with slashes.
inline constexpr const char* applicationObjectPath = "/org/kelvora/Kelvora";

} // namespace kelvora
