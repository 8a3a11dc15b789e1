// SPDX-License-Identifier: MIT
#include "app/shell/app_updater.h"

#include <gtest/gtest.h>

#include <string>

namespace kelvora {
namespace {

TEST(AppUpdater, startsItsControllerAndComesForwardOnlyForWhatItShows) {
    std::string calls;
    struct Controller final : UpdaterController {
        Controller(std::string& log, UserDriverDelegate& owner) : calls(log), delegate(owner) {}
        void start() override { calls += "start "; }
        void checkForUpdates() override { calls += "check "; }
        std::string& calls;
        UserDriverDelegate& delegate;
    };
    Controller* controller = nullptr;
    AppUpdater updater(
        [&](UserDriverDelegate& delegate) {
            auto made = std::make_unique<Controller>(calls, delegate);
            controller = made.get();
            return made;
        },
        [&] { calls += "forward "; });
    updater.checkForUpdates();
    EXPECT_TRUE(controller->delegate.supportsGentleScheduledUpdateReminders());
    for (const UserUpdateState state : {UserUpdateState::scheduled, UserUpdateState::userInitiated})
        controller->delegate.standardUserDriverWillHandleShowingUpdate(UpdateShowing::asReminder,
                                                                       {}, state);
    EXPECT_EQ(calls, "start check ");
    controller->delegate.standardUserDriverWillHandleShowingUpdate(UpdateShowing::byController, {},
                                                                   UserUpdateState::userInitiated);
    EXPECT_EQ(calls, "start check forward ");

    AppUpdater without([](UserDriverDelegate&) { return nullptr; }, [] {});
    without.checkForUpdates();
}

} // namespace
} // namespace kelvora
