// SPDX-License-Identifier: MIT
#pragma once

#include "host/updater_controller.h"

#include <functional>
#include <memory>

namespace kelvora {

/// The program's side of software updates: the menu's action, and its windows brought forward. Main
/// thread only.
class AppUpdater final : public UserDriverDelegate {
public:
    /// Makes the controller and starts it. `activateApplication` brings this program's windows in
    /// front of those of other programs.
    AppUpdater(const UpdaterControllerFactory& makeController,
               std::function<void()> activateApplication);

    /// The menu's action; nothing where the desktop has no controller.
    void checkForUpdates();

    [[nodiscard]] bool supportsGentleScheduledUpdateReminders() const override { return true; }
    void standardUserDriverWillHandleShowingUpdate(UpdateShowing showing, const UpdateItem& update,
                                                   UserUpdateState state) override;

private:
    std::function<void()> activateApplication_;
    std::unique_ptr<UpdaterController> controller_; // last: it calls its delegate until it is gone
};

} // namespace kelvora
