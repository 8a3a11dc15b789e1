// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace kelvora {

/// Opens addresses in the programs that show them: web pages, and pages of the system's settings.
/// Main thread only.
class AddressOpener {
public:
    virtual ~AddressOpener() = default;

    /// `address` is a valid URL. Does not wait for the program that it starts. False when nothing
    /// could be started; the log says why.
    virtual bool open(std::string_view address) = 0;
};

} // namespace kelvora
