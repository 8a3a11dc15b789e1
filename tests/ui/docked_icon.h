// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/real_desktop/x_display.h"

#include <sys/types.h>

namespace kelvora::real {

/// Does a panel show an icon of the program: a visible window of it inside another program's?
[[nodiscard]] bool hasDockedIcon(_XDisplay* display, pid_t program);

} // namespace kelvora::real
