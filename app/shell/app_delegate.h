// SPDX-License-Identifier: MIT
#pragma once

#include "app/conversion/conversion_orchestrator.h"
#include "app/io/event_posting.h"
#include "app/io/hotkey_monitor.h"
#include "app/io/weak_handle.h"
#include "app/shell/app_model.h"
#include "host/desktop.h"
#include "host/session_services.h"

#include <cstdint>
#include <memory>
#include <string>

namespace kelvora {

/// The root of the running program: owns the model and the monitor, and binds them to each other
/// and to the desktop. Main thread only. The services outlive it, and any conversion that it leaves
/// behind.
class AppDelegate {
public:
    /// Nothing is listened to before `launch`.
    AppDelegate(const Desktop& desktop, const SessionServices& session);
    /// As above, with what conversions post through.
    AppDelegate(const Desktop& desktop, const SessionServices& session,
                std::shared_ptr<EventPosting> poster);
    ~AppDelegate();
    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;

    /// Wires everything and starts listening, as the settings have it. Once.
    void launch();
    /// Starts or stops the monitor, hands it the settings and words the model's `hotkeyStatus`.
    void applySettings();

    /// Converts what the user means now, unless a conversion is running or none is allowed.
    void performConversion();

    [[nodiscard]] AppModel& model() { return model_; }
    [[nodiscard]] HotkeyMonitor& hotkey() { return hotkey_; }
    [[nodiscard]] bool conversionInProgress() const { return conversion_.conversionInProgress(); }

private:
    void handleTrigger();
    void handleFocusChange();
    void enableAccessibility();
    [[nodiscard]] std::string listenerStatus();

    Desktop desktop_;
    AppModel model_;
    HotkeyMonitor hotkey_;
    ConversionOrchestrator conversion_;
    std::int32_t frontmostProcess_ = 0; ///< the last that was seen; 0 when unknown
    WeakHandleSource<AppDelegate> self_{this};
};

} // namespace kelvora
