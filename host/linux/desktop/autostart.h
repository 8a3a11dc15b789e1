// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/desktop/file_watch.h"
#include "host/login_item.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace kelvora {

/// Where the session looks for what it opens at login.
struct AutostartPlaces {
    std::filesystem::path userDirectory;                  ///< empty: the user has none
    std::vector<std::filesystem::path> systemDirectories; ///< the most important first
    std::string currentDesktops;                          ///< separated by colons

    /// Of the session that this process runs in. Reads the environment.
    [[nodiscard]] static AutostartPlaces ofSession();
};

/// The file of this process's program. To be asked at the start: later it may have been replaced.
/// Empty when the system does not tell.
[[nodiscard]] std::filesystem::path programFile();

/// The login item as an entry of the session's autostart directories. Main thread only.
class Autostart : public LoginItem {
public:
    /// `program` is what the session is to open: an absolute path.
    Autostart(const AutostartPlaces& places, const std::filesystem::path& program);

    [[nodiscard]] bool isEnabled() override;
    [[nodiscard]] std::optional<std::string> setEnabled(bool isEnabled) override;

    /// Has the user's own entry open this program, where an older or moved one wrote it. Once, at
    /// launch.
    void repair();

private:
    [[nodiscard]] bool readIsEnabled() const;
    /// 0 or an errno value.
    [[nodiscard]] int enable() const;
    [[nodiscard]] int disable() const;

    std::string currentDesktops_;
    std::string program_;
    std::vector<std::filesystem::path> entries_; ///< the most important first
    std::filesystem::path userEntry_;            ///< empty: the user has no directory
    FileWatch watch_;
    bool isEnabled_ = false; ///< as of the last change that was noticed
};

} // namespace kelvora
