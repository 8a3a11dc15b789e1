// SPDX-License-Identifier: MIT
#include "app/shell/app_updater.h"

#include <utility>

namespace kelvora {

AppUpdater::AppUpdater(const UpdaterControllerFactory& makeController,
                       std::function<void()> activateApplication)
    : activateApplication_(std::move(activateApplication)), controller_(makeController(*this)) {
    if (controller_) {
        controller_->start();
    }
}

void AppUpdater::checkForUpdates() {
    if (controller_) {
        controller_->checkForUpdates();
    }
}

void AppUpdater::standardUserDriverWillHandleShowingUpdate(UpdateShowing showing,
                                                           const UpdateItem& /*update*/,
                                                           UserUpdateState /*state*/) {
    if (showing == UpdateShowing::byController) {
        activateApplication_();
    }
}

} // namespace kelvora
