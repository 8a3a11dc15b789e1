// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace kelvora {

/// What has the keyboard focus: a window, opaque, equal only to itself.
struct FocusTarget {
    std::uint64_t id = 0; ///< 0: nothing has the focus, or it is not known

    friend bool operator==(const FocusTarget&, const FocusTarget&) = default;
};

} // namespace kelvora
