// SPDX-License-Identifier: MIT
#pragma once

#include "app/conversion/conversion_model.h"
#include "app/io/weak_handle.h"
#include "app/shell/app_model_observers.h"
#include "app/shell/permission_target.h"
#include "core/mapping/input_source_choice.h"
#include "host/desktop.h"
#include "host/session_services.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kelvora {

/// The settings, the state that is shown, and the diagnostics counters. Main thread only. Texts are
/// UTF-8. Observers are told of every assignment of a property, also of the value that was there;
/// only `inputSources` is assigned when it differs.
class AppModel final : public ConversionModel {
public:
    /// Reads the stored settings, the permissions, the login item and the enabled layouts, and
    /// looks at all but the settings again every `refreshInterval` seconds.
    AppModel(const Desktop& desktop, const SessionServices& session);
    AppModel(const AppModel&) = delete;
    AppModel& operator=(const AppModel&) = delete;

    static constexpr double refreshInterval = 5;

    /// Called when a setting was assigned, and when a refresh found a permission or the login item
    /// changed.
    std::function<void()> onSettingsChanged;
    /// `observer` is called after each assignment, before `onSettingsChanged`, until the
    /// observation is dropped.
    [[nodiscard]] AppModelObservation observe(AppModelObserver observer) {
        return observers_.add(std::move(observer));
    }

    // Settings. Every assignment stores the value and calls `onSettingsChanged`.
    [[nodiscard]] bool isEnabled() const override { return isEnabled_; }
    void setIsEnabled(bool isEnabled);
    /// Longest pause between the two taps, in seconds; not limited.
    [[nodiscard]] double sensitivity() const { return sensitivity_; }
    void setSensitivity(double seconds);
    [[nodiscard]] bool reselectPastedText() const override { return reselectPastedText_; }
    void setReselectPastedText(bool reselectPastedText);

    // Permissions.
    [[nodiscard]] bool accessibilityGranted() const override { return accessibilityGranted_; }
    [[nodiscard]] bool inputMonitoringGranted() const { return inputMonitoringGranted_; }
    /// Reads both permissions and the login item again.
    void refreshPermissions();
    /// Asks the user for the permission: by the desktop's own prompt and the page of its settings.
    void requestPermission(PermissionTarget target);
    /// Opens the page of the system's privacy settings at `anchor`; nothing when no URL has it.
    void openPrivacyPane(std::string_view anchor);

    /// Does the session open the program at login?
    [[nodiscard]] bool launchAtLogin() const { return launchAtLogin_; }
    /// A refusal is told in `statusMessage`.
    void setLaunchAtLogin(bool enabled);

    /// The layouts to choose from, in the desktop's order.
    [[nodiscard]] const std::vector<InputSourceChoice>& inputSources() const {
        return inputSources_;
    }
    /// The chosen pair: two different layouts of `inputSources`, or both empty.
    [[nodiscard]] const std::string& firstSourceID() const override { return firstSourceID_; }
    [[nodiscard]] const std::string& secondSourceID() const override { return secondSourceID_; }
    /// Ignored when `id` is the other side or not among `inputSources`; stored otherwise.
    void setFirstSourceID(const std::string& id);
    void setSecondSourceID(const std::string& id);
    /// Reads the enabled layouts again, and replaces and stores the pair when it is not valid any
    /// more. What is stored stays while there are fewer than two different layouts.
    void refreshInputSources();

    /// The last message for the user.
    [[nodiscard]] const std::optional<std::string>& statusMessage() const { return statusMessage_; }
    void setStatusMessage(std::string message) override;
    /// The state of the keyboard listener.
    [[nodiscard]] const std::string& hotkeyStatus() const { return hotkeyStatus_; }
    void setHotkeyStatus(std::string status);

    /// Shift changes seen.
    [[nodiscard]] std::int64_t shiftEventCount() const { return shiftEventCount_; }
    void setShiftEventCount(std::int64_t count);
    /// Double taps found.
    [[nodiscard]] std::int64_t doubleTapCount() const { return doubleTapCount_; }
    void setDoubleTapCount(std::int64_t count);

private:
    template <typename T>
    void assign(T& property, T value, AppModelProperty name);
    [[nodiscard]] bool isAvailable(std::string_view id) const;
    void settingsChanged() const;
    void scheduleRefresh();

    Desktop desktop_;
    SessionServices session_;
    AppModelObservers observers_;
    bool isEnabled_ = true;
    double sensitivity_ = 0.5;
    bool reselectPastedText_ = true;
    bool accessibilityGranted_ = false;
    bool inputMonitoringGranted_ = false;
    bool launchAtLogin_ = false;
    std::vector<InputSourceChoice> inputSources_;
    std::string firstSourceID_;
    std::string secondSourceID_;
    std::optional<std::string> statusMessage_;
    std::string hotkeyStatus_ = "Starting\u2026";
    std::int64_t shiftEventCount_ = 0;
    std::int64_t doubleTapCount_ = 0;
    std::unique_ptr<Timer> timer_;
    WeakHandleSource<AppModel> self_{this};
};

} // namespace kelvora
