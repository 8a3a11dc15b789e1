// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace kelvora {

/// One enabled keyboard layout as the settings and the pickers know it. UTF-8.
struct InputSourceChoice {
    std::string id;   ///< stable; what the settings store
    std::string name; ///< for display

    friend bool operator==(const InputSourceChoice&, const InputSourceChoice&) = default;
};

} // namespace kelvora
