// SPDX-License-Identifier: MIT
#pragma once

#include "app/conversion/conversion_model.h"
#include "core/mapping/input_source_choice.h"
#include "host/input_sources.h"
#include "host/permissions.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kelvora {

/// The settings, the state that is shown, and the diagnostics counters. Main thread only. Texts are
/// UTF-8.
class AppModel final : public ConversionModel {
public:
    /// Reads the permissions and the enabled layouts.
    AppModel(InputSources& sources, Permissions& permissions);

    // Settings. Every assignment calls `onSettingsChanged`, also of the value that was there.
    [[nodiscard]] bool isEnabled() const override { return isEnabled_; }
    void setIsEnabled(bool isEnabled);
    /// Longest pause between the two taps, in seconds.
    [[nodiscard]] double sensitivity() const { return sensitivity_; }
    void setSensitivity(double seconds);
    [[nodiscard]] bool reselectPastedText() const override { return reselectPastedText_; }
    void setReselectPastedText(bool reselectPastedText);

    // State.
    [[nodiscard]] bool accessibilityGranted() const override { return accessibilityGranted_; }
    [[nodiscard]] bool inputMonitoringGranted() const { return inputMonitoringGranted_; }
    /// The layouts to choose from, in the desktop's order.
    [[nodiscard]] const std::vector<InputSourceChoice>& inputSources() const {
        return inputSources_;
    }
    /// The chosen pair: two different layouts of `inputSources`, or both empty.
    [[nodiscard]] const std::string& firstSourceID() const override { return firstSourceID_; }
    [[nodiscard]] const std::string& secondSourceID() const override { return secondSourceID_; }
    /// Ignored when `id` is the other side or not among `inputSources`.
    void setFirstSourceID(const std::string& id);
    void setSecondSourceID(const std::string& id);
    /// Reads the enabled layouts again, and replaces the pair by the first two when it is not valid
    /// any more.
    void refreshInputSources();

    /// The last message for the user.
    [[nodiscard]] const std::optional<std::string>& statusMessage() const { return statusMessage_; }
    void setStatusMessage(std::string message) override;
    /// The state of the keyboard listener.
    [[nodiscard]] const std::string& hotkeyStatus() const { return hotkeyStatus_; }
    void setHotkeyStatus(std::string status);

    std::int64_t shiftEventCount = 0; ///< Shift changes seen
    std::int64_t doubleTapCount = 0;  ///< double taps found

    std::function<void()> onSettingsChanged;
    /// Called with the new text after `statusMessage` or `hotkeyStatus` was assigned.
    std::function<void(std::string_view text)> onStatusChanged;

private:
    [[nodiscard]] bool isAvailable(std::string_view id) const;
    void settingsChanged() const;
    void statusChanged(std::string_view text) const;

    InputSources& sources_;
    bool isEnabled_ = true;
    double sensitivity_ = 0.5;
    bool reselectPastedText_ = true;
    bool accessibilityGranted_ = false;
    bool inputMonitoringGranted_ = false;
    std::vector<InputSourceChoice> inputSources_;
    std::string firstSourceID_;
    std::string secondSourceID_;
    std::optional<std::string> statusMessage_;
    std::string hotkeyStatus_ = "Starting\u2026";
};

} // namespace kelvora
