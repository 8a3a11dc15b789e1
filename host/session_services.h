// SPDX-License-Identifier: MIT
#pragma once

#include "host/address_opener.h"
#include "host/login_item.h"
#include "host/timers.h"
#include "host/user_defaults.h"

namespace kelvora {

/// What the session does for the program itself, beside the desktop that conversions work on. All
/// outlive the program's own objects.
struct SessionServices {
    Timers& timers;
    UserDefaults& userDefaults;
    LoginItem& loginItem;
    AddressOpener& addressOpener;
};

} // namespace kelvora
