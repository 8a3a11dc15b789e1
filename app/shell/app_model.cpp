// SPDX-License-Identifier: MIT
#include "app/shell/app_model.h"

#include "core/mapping/input_source_switcher.h"

#include <algorithm>
#include <utility>

namespace kelvora {

AppModel::AppModel(InputSources& sources, Permissions& permissions)
    : sources_(sources), accessibilityGranted_(permissions.isAccessibilityTrusted()),
      inputMonitoringGranted_(permissions.mayListenToEvents()) {
    refreshInputSources();
}

void AppModel::setIsEnabled(bool isEnabled) {
    isEnabled_ = isEnabled;
    settingsChanged();
}

void AppModel::setSensitivity(double seconds) {
    sensitivity_ = seconds;
    settingsChanged();
}

void AppModel::setReselectPastedText(bool reselectPastedText) {
    reselectPastedText_ = reselectPastedText;
    settingsChanged();
}

void AppModel::setFirstSourceID(const std::string& id) {
    if (id != secondSourceID_ && isAvailable(id)) {
        firstSourceID_ = id;
    }
}

void AppModel::setSecondSourceID(const std::string& id) {
    if (id != firstSourceID_ && isAvailable(id)) {
        secondSourceID_ = id;
    }
}

void AppModel::refreshInputSources() {
    std::vector<InputSourceChoice> layouts = InputSourceSwitcher::enabledLayouts(sources_);
    if (layouts != inputSources_) {
        inputSources_ = std::move(layouts);
    }
    if (inputSources_.size() < 2) {
        firstSourceID_.clear();
        secondSourceID_.clear();
        return;
    }
    if (firstSourceID_ != secondSourceID_ && isAvailable(firstSourceID_) &&
        isAvailable(secondSourceID_)) {
        return;
    }
    firstSourceID_ = inputSources_[0].id;
    secondSourceID_ = inputSources_[1].id;
}

void AppModel::setStatusMessage(std::string message) {
    statusMessage_ = std::move(message);
    statusChanged(*statusMessage_);
}

void AppModel::setHotkeyStatus(std::string status) {
    hotkeyStatus_ = std::move(status);
    statusChanged(hotkeyStatus_);
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

void AppModel::statusChanged(std::string_view text) const {
    if (onStatusChanged) {
        onStatusChanged(text);
    }
}

} // namespace kelvora
