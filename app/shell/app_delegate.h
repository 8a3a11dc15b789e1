// SPDX-License-Identifier: MIT
#pragma once

#include "app/conversion/conversion_orchestrator.h"
#include "app/io/event_posting.h"
#include "app/io/hotkey_monitor.h"
#include "app/io/weak_handle.h"
#include "app/shell/app_model.h"
#include "app/shell/app_updater.h"
#include "app/shell/user_interface.h"
#include "host/desktop.h"
#include "host/session_services.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace kelvora {

/// The root of the running program: owns the model, the monitor and the updater, and binds them to
/// each other, to the menus and to the desktop. Main thread only. The services and the interface
/// outlive it, and any conversion that it leaves behind.
class AppDelegate {
public:
    /// Nothing is listened to before `launch`.
    AppDelegate(const Desktop& desktop, const SessionServices& session, UserInterface& interface);
    /// As above, with what conversions post through.
    AppDelegate(const Desktop& desktop, const SessionServices& session, UserInterface& interface,
                std::shared_ptr<EventPosting> poster);
    ~AppDelegate();
    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;

    static constexpr double healthCheckInterval = 60; ///< seconds

    /// Takes over from an older copy, wires everything and starts listening, as the settings have
    /// it. Shows the preferences unless the session started the program. Once.
    void launch();
    /// Starts or stops the monitor, hands it the settings and words the model's `hotkeyStatus`.
    void applySettings();

    /// Converts what the user means now, unless a conversion is running or none is allowed.
    void performConversion();
    void showPreferences();

    [[nodiscard]] AppModel& model() { return model_; }
    [[nodiscard]] HotkeyMonitor& hotkey() { return hotkey_; }
    [[nodiscard]] bool conversionInProgress() const { return conversion_.conversionInProgress(); }

private:
    /// For those that call it later: does nothing once this object is gone.
    template <typename... Arguments>
    [[nodiscard]] std::function<void(Arguments...)>
    weakly(void (AppDelegate::*handler)(Arguments...)) const {
        return [weak = self_.handle(), handler](Arguments... arguments) {
            if (AppDelegate* delegate = weak.get()) {
                (delegate->*handler)(arguments...);
            }
        };
    }

    void installMenus();
    void wireMonitor();
    void observeSession();

    void handleMenuAction(MenuAction action);
    void handleShiftEvent();
    void handleTrigger();
    void handleMouseDown();
    void handleFocusChange(FocusChange change);
    void handleSystemWake();
    void handleSessionActive();
    void handleSessionResign();
    void handleAccessibilityChanged();
    void handleReplaced();

    void checkListenerHealth();
    /// Has the tap work again, or begins anew without one.
    void reviveListener();
    void restartListener();
    void enableAccessibility();
    [[nodiscard]] std::string listenerStatus();

    Desktop desktop_;
    SessionServices session_;
    UserInterface& interface_;
    AppModel model_;
    HotkeyMonitor hotkey_;
    std::optional<AppUpdater> updater_;
    std::unique_ptr<Timer> listenerHealthTimer_;
    ConversionOrchestrator conversion_;
    std::int32_t frontmostProcess_ = 0; ///< the last that was seen; 0 when unknown
    WeakHandleSource<AppDelegate> self_{this};
};

} // namespace kelvora
