// SPDX-License-Identifier: MIT
#include "app/shell/app_model.h"

#include "core/mapping/input_source_switcher.h"

#include <algorithm>
#include <utility>

namespace kelvora {
namespace {

constexpr std::string_view isEnabledKey = "isEnabled";
constexpr std::string_view sensitivityKey = "sensitivity";
constexpr std::string_view reselectPastedTextKey = "reselectPastedText";
constexpr std::string_view firstSourceIDKey = "firstSourceID";
constexpr std::string_view secondSourceIDKey = "secondSourceID";

} // namespace

AppModel::AppModel(const Desktop& desktop, const SessionServices& session)
    : desktop_(desktop), session_(session) {
    UserDefaults& defaults = session_.userDefaults;
    isEnabled_ = defaults.boolean(isEnabledKey).value_or(isEnabled_);
    sensitivity_ = defaults.number(sensitivityKey).value_or(sensitivity_);
    reselectPastedText_ = defaults.boolean(reselectPastedTextKey).value_or(reselectPastedText_);
    firstSourceID_ = defaults.string(firstSourceIDKey).value_or("");
    secondSourceID_ = defaults.string(secondSourceIDKey).value_or("");
    accessibilityGranted_ = desktop_.permissions.isAccessibilityTrusted();
    inputMonitoringGranted_ = desktop_.permissions.mayListenToEvents();
    launchAtLogin_ = session_.loginItem.isEnabled();
    refreshInputSources();
    scheduleRefresh();
}

void AppModel::setIsEnabled(bool isEnabled) {
    assign(isEnabled_, isEnabled, AppModelProperty::isEnabled);
    session_.userDefaults.setBoolean(isEnabledKey, isEnabled_);
    settingsChanged();
}

void AppModel::setSensitivity(double seconds) {
    assign(sensitivity_, seconds, AppModelProperty::sensitivity);
    session_.userDefaults.setNumber(sensitivityKey, sensitivity_);
    settingsChanged();
}

void AppModel::setReselectPastedText(bool reselectPastedText) {
    assign(reselectPastedText_, reselectPastedText, AppModelProperty::reselectPastedText);
    session_.userDefaults.setBoolean(reselectPastedTextKey, reselectPastedText_);
    settingsChanged();
}

void AppModel::refreshPermissions() {
    const bool accessibility = desktop_.permissions.isAccessibilityTrusted();
    const bool inputMonitoring = desktop_.permissions.mayListenToEvents();
    const bool login = session_.loginItem.isEnabled();
    const bool isChanged = accessibility != accessibilityGranted_ ||
                           inputMonitoring != inputMonitoringGranted_ || login != launchAtLogin_;
    assign(accessibilityGranted_, accessibility, AppModelProperty::accessibilityGranted);
    assign(inputMonitoringGranted_, inputMonitoring, AppModelProperty::inputMonitoringGranted);
    assign(launchAtLogin_, login, AppModelProperty::launchAtLogin);
    if (isChanged) {
        settingsChanged();
    }
}

void AppModel::requestPermission(PermissionTarget target) {
    switch (target) {
    case PermissionTarget::inputMonitoring:
        desktop_.permissions.requestListeningToEvents();
        break;
    case PermissionTarget::accessibility:
        desktop_.permissions.requestAccessibilityTrust();
        break;
    }
    openPrivacyPane(target.systemSettingsPane());
    refreshPermissions();
}

void AppModel::openPrivacyPane(std::string_view anchor) {
    if (const std::optional<std::string> address = privacyPaneAddress(anchor)) {
        session_.addressOpener.open(*address);
    }
}

void AppModel::setLaunchAtLogin(bool enabled) {
    const std::optional<std::string> refusal = session_.loginItem.setEnabled(enabled);
    assign(launchAtLogin_, session_.loginItem.isEnabled(), AppModelProperty::launchAtLogin);
    std::optional<std::string> message;
    if (refusal) {
        message = "Launch at Login could not be changed: " + *refusal;
    }
    assign(statusMessage_, std::move(message), AppModelProperty::statusMessage);
}

void AppModel::setFirstSourceID(const std::string& id) {
    if (id != secondSourceID_ && isAvailable(id)) {
        assign(firstSourceID_, id, AppModelProperty::firstSourceID);
        session_.userDefaults.setString(firstSourceIDKey, firstSourceID_);
    }
}

void AppModel::setSecondSourceID(const std::string& id) {
    if (id != firstSourceID_ && isAvailable(id)) {
        assign(secondSourceID_, id, AppModelProperty::secondSourceID);
        session_.userDefaults.setString(secondSourceIDKey, secondSourceID_);
    }
}

void AppModel::refreshInputSources() {
    std::vector<InputSourceChoice> layouts =
        InputSourceSwitcher::enabledLayouts(desktop_.inputSources);
    if (layouts != inputSources_) {
        assign(inputSources_, layouts, AppModelProperty::inputSources);
    }
    // The same layout may be enabled twice.
    const auto second = std::ranges::find_if(
        layouts, [&](const InputSourceChoice& layout) { return layout.id != layouts.front().id; });
    if (second == layouts.end()) {
        assign(firstSourceID_, {}, AppModelProperty::firstSourceID);
        assign(secondSourceID_, {}, AppModelProperty::secondSourceID);
        return;
    }
    if (firstSourceID_ != secondSourceID_ && isAvailable(firstSourceID_) &&
        isAvailable(secondSourceID_)) {
        return;
    }
    assign(firstSourceID_, layouts[0].id, AppModelProperty::firstSourceID);
    assign(secondSourceID_, second->id, AppModelProperty::secondSourceID);
    session_.userDefaults.setString(firstSourceIDKey, layouts[0].id);
    session_.userDefaults.setString(secondSourceIDKey, second->id);
}

void AppModel::setStatusMessage(std::string message) {
    assign(statusMessage_, std::optional(std::move(message)), AppModelProperty::statusMessage);
}

void AppModel::setHotkeyStatus(std::string status) {
    assign(hotkeyStatus_, std::move(status), AppModelProperty::hotkeyStatus);
}

void AppModel::setShiftEventCount(std::int64_t count) {
    assign(shiftEventCount_, count, AppModelProperty::shiftEventCount);
}

void AppModel::setDoubleTapCount(std::int64_t count) {
    assign(doubleTapCount_, count, AppModelProperty::doubleTapCount);
}

template <typename T>
void AppModel::assign(T& property, T value, AppModelProperty name) {
    property = std::move(value);
    observers_.announce(name);
}

bool AppModel::isAvailable(std::string_view id) const {
    return std::ranges::any_of(inputSources_,
                               [id](const InputSourceChoice& layout) { return layout.id == id; });
}

void AppModel::settingsChanged() const {
    if (onSettingsChanged) {
        onSettingsChanged();
    }
}

void AppModel::scheduleRefresh() {
    const WeakHandle<AppModel> weak = self_.handle();
    // On the main queue, so that a tick comes between two pieces of work and not into one.
    timer_ = session_.timers.repeat(refreshInterval, [weak, &dispatch = desktop_.dispatch] {
        dispatch.postToMain([weak] {
            if (AppModel* model = weak.get()) {
                model->refreshPermissions();
                model->refreshInputSources();
            }
        });
    });
}

} // namespace kelvora
