// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace kelvora::real {

/// What a terminal's last line shows after it was sent `output` (UTF-8), as far as a line editor
/// needs: characters, carriage return, backspace, moving the cursor, erasing, inserting and
/// deleting characters. Any other control sequence shows as U+FFFD, so that no test passes on a
/// guess.
[[nodiscard]] std::string lastTerminalLine(std::string_view output);

} // namespace kelvora::real
