// SPDX-License-Identifier: MIT
#pragma once

#include "host/address_opener.h"
#include "host/log.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kelvora {

/// A program, looked up where the system's programs are, and its arguments.
using SettingsCommand = std::vector<std::string>;

/// What shows the page of the desktop's settings that comes nearest to the privacy page with this
/// anchor, best first. The desktops of X11 sessions keep no list of the programs that may post or
/// watch keys, so it is the page of accessibility or of the keyboard. Empty for other anchors and
/// for desktops (XDG_CURRENT_DESKTOP, separated by colons) without such pages. Any thread.
[[nodiscard]] std::vector<SettingsCommand> settingsPageCommands(std::string_view anchor,
                                                                std::string_view currentDesktops);

/// Opens addresses with the programs of the running desktop, as processes of their own that outlive
/// this one. Main thread only.
class SettingsPages : public AddressOpener {
public:
    /// `currentDesktops` is XDG_CURRENT_DESKTOP.
    SettingsPages(std::string currentDesktops, LogSink& log)
        : currentDesktops_(std::move(currentDesktops)), log_(log) {}

    /// Pages of the privacy settings, web pages (https) and files.
    bool open(std::string_view address) override;

private:
    [[nodiscard]] std::vector<SettingsCommand> commandsFor(std::string_view address) const;

    std::string currentDesktops_;
    LogSink& log_;
};

} // namespace kelvora
