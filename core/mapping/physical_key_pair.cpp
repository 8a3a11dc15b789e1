// SPDX-License-Identifier: MIT
#include "core/mapping/physical_key_pair.h"

#include "core/text/normalization.h"

namespace kelvora {

PhysicalKeyPair::PhysicalKeyPair(std::u16string_view firstText, std::u16string_view secondText,
                                 bool primary)
    : first(toNfc(firstText)), second(toNfc(secondText)), isPrimary(primary) {}

} // namespace kelvora
