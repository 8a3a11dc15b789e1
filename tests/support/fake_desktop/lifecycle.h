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
class Lifecycle final : public SingleInstance,
                        public SessionEvents,
                        public DisplayEvents,
                        public AccessibilityStatus {
public:
    using Handler = std::function<void()>;

    explicit Lifecycle(SessionCalls& calls) : calls_(calls) {}

    bool isSessionActive = true;
    Handler onReplaced, onReopen, onWake, onDisplayWake, onBecameActive, onResignedActive,
        onAccessibilityChanged;

    void setOnReplaced(Handler handler) override { onReplaced = std::move(handler); }
    void setOnReopen(Handler handler) override { onReopen = std::move(handler); }
    void claim() override { calls_.emplace_back("claim"); }
    [[nodiscard]] bool isActive() const override { return isSessionActive; }
    void setOnWake(Handler handler) override { onWake = std::move(handler); }
    void setOnBecameActive(Handler handler) override { onBecameActive = std::move(handler); }
    void setOnResignedActive(Handler handler) override { onResignedActive = std::move(handler); }
    void setOnDisplayWake(Handler handler) override { onDisplayWake = std::move(handler); }
    void setOnChanged(Handler handler) override { onAccessibilityChanged = std::move(handler); }

private:
    SessionCalls& calls_;
};

/// Adds "start updater" and "check for updates" to the calls.
class Updater final : public UpdaterController {
public:
    explicit Updater(SessionCalls& calls) : calls_(calls) {}

    void start() override { calls_.emplace_back("start updater"); }
    void checkForUpdates() override { calls_.emplace_back("check for updates"); }

private:
    SessionCalls& calls_;
};

/// Menus and windows that only remember. Adds "accessory", "main menu", "status item",
/// "preferences", "activate" and "terminate" to the calls.
class Interface final : public UserInterface {
public:
    explicit Interface(SessionCalls& calls) : calls_(calls) {}

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

private:
    SessionCalls& calls_;
};

} // namespace kelvora::fake
