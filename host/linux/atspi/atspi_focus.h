// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/atspi/atspi_reference.h"

#include <cstdint>
#include <optional>

namespace kelvora {

/// Which accessible object has the keyboard focus, as the applications' notices tell it. Any
/// thread; never asks anybody.
class AtspiFocus {
public:
    virtual ~AtspiFocus() = default;

    /// The focused object of an application, with a text if there is one. Absent when the
    /// application has told of none, or is not on the bus.
    [[nodiscard]] virtual std::optional<AtspiReference>
    focusedElement(std::int32_t processIdentifier) const = 0;
    /// That of the active window's application.
    [[nodiscard]] virtual std::optional<AtspiReference> focusedElement() const = 0;
};

} // namespace kelvora
