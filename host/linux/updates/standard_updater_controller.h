// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/updates/update_flow.h"
#include "host/linux/updates/update_installer.h"
#include "host/log.h"
#include "host/updater_controller.h"

#include <memory>
#include <string>
#include <vector>

class QTimer;

namespace kelvora {

class PackageFile;
class PackageInspection;
class UpdateTransfer;
class UpdateWindow;

/// What the installation and the session say. Paths are absolute.
struct UpdaterSetup {
    std::string configurationFile; ///< docs/updates.md; no such file: updates come with the system
    std::string installedVersion;  ///< of this program, as a Debian version
    std::string architecture;      ///< as dpkg names it
    std::string stateDirectory;    ///< what is kept between runs
    std::string cacheDirectory;    ///< of nobody else: downloads
    std::vector<InstallerCommand> installers;
};

/// The setup of this program in this session: directories below XDG_STATE_HOME and XDG_CACHE_HOME.
[[nodiscard]] UpdaterSetup sessionUpdaterSetup(std::string configurationFile,
                                               std::string installedVersion);

/// Updates from the installation's feed, with a window. Needs a QApplication. Until the first check
/// there is one timer and nothing else. Main thread only.
class StandardUpdaterController final : public UpdaterController, private UpdateEffects {
public:
    StandardUpdaterController(UpdaterSetup setup, UserDriverDelegate& delegate, LogSink& log);
    ~StandardUpdaterController() override;

    void start() override { flow_.start(); }
    void checkForUpdates() override { flow_.checkForUpdates(); }

private:
    [[nodiscard]] std::optional<UpdateFlow::Setup> readConfiguration();
    [[nodiscard]] std::optional<UpdateMemory> readMemory();
    [[nodiscard]] std::string memoryFile() const;
    void inspected(bool isGenuine);
    void ended(UpdateNotice notice);

    std::chrono::sys_seconds now() override;
    void wakeAfter(std::chrono::seconds pause) override;
    void fetchFeed(const std::string& url) override;
    void fetchPackage(const UpdateOffer& offer) override;
    void installPackage() override;
    void abandonTransfer() override;
    void removeLeftovers() override;
    void show(const UpdateScreen& screen, UpdatePresentation presentation) override;
    void closeWindow() override;
    void willShow(UpdateShowing showing, const UpdateItem& update, UserUpdateState state) override;
    void remember(const UpdateMemory& memory) override;
    void log(LogLevel level, std::string_view message) override;

    UpdaterSetup setup_;
    UserDriverDelegate& delegate_;
    LogSink& log_;
    Ed25519PublicKey key_{};
    UpdateFlow flow_;
    std::unique_ptr<QTimer> timer_;
    std::unique_ptr<UpdateWindow> window_;
    std::string feed_;
    std::optional<UpdateOffer> offer_; // whose package is fetched
    std::unique_ptr<PackageFile> package_;
    std::unique_ptr<UpdateTransfer> transfer_;
    std::unique_ptr<PackageInspection> inspection_;
    UpdateInstaller installer_;
};

} // namespace kelvora
