// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace kelvora {

/// The address of an accessible object on the accessibility bus.
struct AtspiReference {
    std::string busName; ///< unique name of the application's connection
    std::string path;    ///< object path

    friend bool operator==(const AtspiReference&, const AtspiReference&) = default;
};

} // namespace kelvora
