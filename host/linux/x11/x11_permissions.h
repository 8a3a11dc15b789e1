// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/x11/x11_connection.h"
#include "host/permissions.h"

namespace kelvora {

/// What an X server lets this client do: trusted clients may everything; to untrusted and sandboxed
/// ones the server does not show the extensions that it takes. Main thread only.
class X11Permissions final : public Permissions {
public:
    explicit X11Permissions(XcbConnectionPtr connection) : connection_(std::move(connection)) {}

    /// XTEST is there.
    [[nodiscard]] bool isAccessibilityTrusted() override;
    /// RECORD is there. XInput alone tells of the double tap, but not of what was typed.
    [[nodiscard]] bool mayListenToEvents() override;

    // An X server asks nobody: there is no prompt to show, and what it refuses stays refused until
    // the program is started as a trusted client.
    void requestAccessibilityTrust() override {}
    void requestListeningToEvents() override {}

    /// Takes up notices, so that they do not pile up in the server.
    void processEvents();

private:
    [[nodiscard]] bool hasExtension(xcb_extension_t* extension);

    XcbConnectionPtr connection_;
};

} // namespace kelvora
