// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_permissions.h"

#include <xcb/record.h>
#include <xcb/xtest.h>

namespace kelvora {

bool X11Permissions::isAccessibilityTrusted() {
    return hasExtension(&xcb_test_id);
}

bool X11Permissions::mayListenToEvents() {
    return hasExtension(&xcb_record_id);
}

void X11Permissions::processEvents() {
    while (XcbPtr<xcb_generic_event_t>(xcb_poll_for_event(connection_.get())))
        continue;
}

bool X11Permissions::hasExtension(xcb_extension_t* extension) {
    // xcb asks once for each connection and remembers.
    const auto* reply = xcb_get_extension_data(connection_.get(), extension);
    return xcb_connection_has_error(connection_.get()) == 0 && reply != nullptr &&
           reply->present != 0;
}

} // namespace kelvora
