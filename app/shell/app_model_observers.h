// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace kelvora {

/// What of the model can be observed.
enum class AppModelProperty {
    isEnabled,
    sensitivity,
    reselectPastedText,
    accessibilityGranted,
    inputMonitoringGranted,
    launchAtLogin,
    inputSources,
    firstSourceID,
    secondSourceID,
    statusMessage,
    hotkeyStatus,
    shiftEventCount,
    doubleTapCount,
};

using AppModelObserver = std::function<void(AppModelProperty)>;
/// Keeps an observer on the list. Dropping it ends the observation, at any time, also while the
/// observer is being called.
using AppModelObservation = std::shared_ptr<const void>;

/// Who is told of the model's changes. Main thread only.
class AppModelObservers {
public:
    [[nodiscard]] AppModelObservation add(AppModelObserver observer) {
        AppModelObservation observation = std::make_shared<int>();
        entries_.push_back(
            {observation, std::make_shared<const AppModelObserver>(std::move(observer))});
        return observation;
    }

    void announce(AppModelProperty property) {
        std::erase_if(entries_, [](const Entry& entry) { return entry.observation.expired(); });
        // Observers may assign properties, and come and go, while they are called.
        const std::vector<Entry> entries = entries_;
        for (const Entry& entry : entries) {
            if (!entry.observation.expired()) {
                (*entry.observer)(property);
            }
        }
    }

private:
    struct Entry {
        std::weak_ptr<const void> observation;
        std::shared_ptr<const AppModelObserver> observer;
    };

    std::vector<Entry> entries_; ///< in the order of their coming
};

} // namespace kelvora
