// SPDX-License-Identifier: MIT
#pragma once

#include "host/accessibility_status.h"
#include "host/address_opener.h"
#include "host/display_events.h"
#include "host/login_item.h"
#include "host/session_events.h"
#include "host/single_instance.h"
#include "host/timers.h"
#include "host/updater_controller.h"
#include "host/user_defaults.h"

namespace kelvora {

/// What the session does for the program itself, beside the desktop that conversions work on. All
/// outlive the program's own objects.
struct SessionServices {
    Timers& timers;
    UserDefaults& userDefaults;
    LoginItem& loginItem;
    AddressOpener& addressOpener;
    SingleInstance& singleInstance;
    SessionEvents& sessionEvents;
    DisplayEvents& displayEvents;
    AccessibilityStatus& accessibilityStatus;
    UpdaterControllerFactory makeUpdater;
    /// The session started the program by itself, at login; not the user, who would want to see it.
    bool launchedInBackground = false;
};

} // namespace kelvora
