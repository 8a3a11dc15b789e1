// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace kelvora {

/// Calls of `operator new` by any thread since the program started.
[[nodiscard]] std::size_t allocationCount();

} // namespace kelvora
