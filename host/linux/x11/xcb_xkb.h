// SPDX-License-Identifier: MIT
#pragma once

// xcb/xkb.h has a field of this name (xcb-proto 1.15), which C++ does not take.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit
