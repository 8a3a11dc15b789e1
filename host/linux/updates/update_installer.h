// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/updates/update_notice.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

class QObject;

namespace kelvora {

/// A program of the system's that takes a package. It asks for the rights that it needs by itself:
/// nothing here ever runs with more than the user's.
struct InstallerCommand {
    enum class Kind {
        installs, ///< installs and ends; its exit code tells how it went
        opens,    ///< shows the package to the user and leaves the rest to them
    };
    std::string program;                ///< a name, looked up where the system's programs are
    std::vector<std::string> arguments; ///< the package's path comes after them
    Kind kind = Kind::opens;
};

/// Those of Debian's desktops, best first.
[[nodiscard]] std::vector<InstallerCommand> debianInstallers();

/// Hands a package to the first of its commands that is there. Main thread only. A program that
/// runs goes on when this object is gone, because an installation must not be broken off.
class UpdateInstaller {
public:
    explicit UpdateInstaller(std::vector<InstallerCommand> commands);
    ~UpdateInstaller();
    UpdateInstaller(const UpdateInstaller&) = delete;
    UpdateInstaller& operator=(const UpdateInstaller&) = delete;

    /// `ended` is called later with `installed`, `handedOver`, `installerFailed` or `noInstaller`,
    /// and not at all when this object is gone before.
    void install(const std::string& package, const std::function<void(UpdateNotice)>& ended);

private:
    std::vector<InstallerCommand> commands_;
    std::unique_ptr<QObject> context_;
};

} // namespace kelvora
