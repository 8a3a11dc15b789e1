// SPDX-License-Identifier: MIT
#pragma once

#include "app/shell/user_interface.h"
#include "host/accessibility_status.h"
#include "host/display_events.h"
#include "host/session_events.h"
#include "host/single_instance.h"
#include "host/updater_controller.h"
#include "tests/support/fake_desktop/session.h"

#include <functional>
#include <memory>
#include <utility>

namespace kelvora::fake {

/// What tells the program of its own life: a test calls the handlers. Adds "claim" to the calls.
struct Lifecycle final
    : Recorder<SingleInstance, SessionEvents, DisplayEvents, AccessibilityStatus> {
    using Recorder::Recorder;
    using Handler = std::function<void()>;

    bool isSessionLocked = false;
    Handler onReplaced, onReopen, onWake, onDisplayWake, onBecameActive, onResignedActive,
        onAccessibilityChanged;

    void setOnReplaced(Handler handler) override { onReplaced = std::move(handler); }
    void setOnReopen(Handler handler) override { onReopen = std::move(handler); }
    void claim() override { calls_.emplace_back("claim"); }
    [[nodiscard]] bool isLocked() const override { return isSessionLocked; }
    void setOnWake(Handler handler) override { onWake = std::move(handler); }
    void setOnBecameActive(Handler handler) override { onBecameActive = std::move(handler); }
    void setOnResignedActive(Handler handler) override { onResignedActive = std::move(handler); }
    void setOnDisplayWake(Handler handler) override { onDisplayWake = std::move(handler); }
    void setOnChanged(Handler handler) override { onAccessibilityChanged = std::move(handler); }
};

/// Adds "start updater" and "check for updates" to the calls.
struct Updater final : Recorder<UpdaterController> {
    using Recorder::Recorder;
    void start() override { calls_.emplace_back("start updater"); }
    void checkForUpdates() override { calls_.emplace_back("check for updates"); }
};

/// Menus and windows that only remember. Adds "accessory", "main menu", "status item",
/// "preferences", "activate" and "terminate" to the calls.
struct Interface final : Recorder<UserInterface> {
    using Recorder::Recorder;
    bool isEnableItemOn = false;
    std::function<void(MenuAction)> choose; ///< an item of a menu

    void becomeAccessory() override { calls_.emplace_back("accessory"); }
    void setMainMenu(std::span<const Menu> /*menus*/) override { calls_.emplace_back("main menu"); }
    void showStatusItem(const Menu& /*menu*/) override { calls_.emplace_back("status item"); }
    void setEnableItemState(bool isOn) override { isEnableItemOn = isOn; }
    void setOnMenuAction(std::function<void(MenuAction)> handler) override {
        choose = std::move(handler);
    }
    void showPreferences(AppModel& /*model*/) override { calls_.emplace_back("preferences"); }
    void activate() override { calls_.emplace_back("activate"); }
    void terminate() override { calls_.emplace_back("terminate"); }
};

} // namespace kelvora::fake
