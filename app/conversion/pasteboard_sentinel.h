// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace kelvora {

/// A text that nobody else writes, another one each time: around a random UUID (RFC 4122, version
/// 4) in capitals. Any thread.
[[nodiscard]] std::u16string makePasteboardSentinel();

} // namespace kelvora
