// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace kelvora {

/// A range counted in UTF-16 code units from the start of a text, as text fields exchange
/// selections. Comes from outside as it is: either number may be negative or far past the end.
struct Utf16Range {
    std::int64_t location = 0;
    std::int64_t length = 0;

    bool operator==(const Utf16Range&) const = default;
};

} // namespace kelvora
