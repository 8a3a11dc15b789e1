// SPDX-License-Identifier: MIT
#include "app/conversion/pasteboard_sentinel.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <random>
#include <string_view>

namespace kelvora {

std::u16string makePasteboardSentinel() {
    std::random_device random;
    std::uniform_int_distribution<unsigned> byte(0, 255);
    std::array<unsigned, 16> uuid{};
    std::ranges::generate(uuid, [&] { return byte(random); });
    uuid[6] = (uuid[6] & 0x0FU) | 0x40U;
    uuid[8] = (uuid[8] & 0x3FU) | 0x80U;

    std::u16string sentinel = u"__KELVORA_SENTINEL_";
    for (std::size_t index = 0; index < uuid.size(); ++index) {
        if (index == 4 || index == 6 || index == 8 || index == 10) {
            sentinel += u'-';
        }
        constexpr std::u16string_view digits = u"0123456789ABCDEF";
        sentinel += digits[uuid[index] >> 4U];
        sentinel += digits[uuid[index] & 0x0FU];
    }
    return sentinel + u"__";
}

} // namespace kelvora
