// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace kelvora {

/// What a conversion reads of the settings and where it reports. Main thread only.
class ConversionModel {
public:
    virtual ~ConversionModel() = default;

    [[nodiscard]] virtual bool isEnabled() const = 0;
    [[nodiscard]] virtual bool accessibilityGranted() const = 0;
    /// Identifiers of the two chosen layouts; empty when not chosen.
    [[nodiscard]] virtual const std::string& firstSourceID() const = 0;
    [[nodiscard]] virtual const std::string& secondSourceID() const = 0;
    /// Is pasted text to be selected again?
    [[nodiscard]] virtual bool reselectPastedText() const = 0;

    /// The last message for the user, UTF-8.
    virtual void setStatusMessage(std::string message) = 0;
};

} // namespace kelvora
