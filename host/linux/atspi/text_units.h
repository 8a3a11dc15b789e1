// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace kelvora {

/// What an application counts text positions in on the accessibility bus. The interface means code
/// points; Qt and LibreOffice count UTF-16 units.
enum class OffsetUnit { codePoint, utf16 };

/// Length of a text in that unit.
[[nodiscard]] std::int64_t lengthIn(OffsetUnit unit, std::u16string_view text);

/// The unit in which the text is `length` long; absent when it tells nothing (both or neither).
[[nodiscard]] std::optional<OffsetUnit> unitOf(std::u16string_view text, std::int64_t length);

/// False for an unpaired surrogate or a NUL, neither of which can be sent.
[[nodiscard]] bool canBeSent(std::u16string_view text);

/// Where the first character begins that is certainly whole whatever stood before the text; the
/// text's size when there is none.
[[nodiscard]] std::size_t firstCertainBoundary(std::u16string_view text);
/// Where the last character ends that is certainly whole whatever follows the text; 0 when there is
/// none.
[[nodiscard]] std::size_t lastCertainBoundary(std::u16string_view text);

} // namespace kelvora
