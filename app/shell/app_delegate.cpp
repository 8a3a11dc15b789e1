// SPDX-License-Identifier: MIT
#include "app/shell/app_delegate.h"

#include "app/conversion/focused_text_converter.h"
#include "app/io/system_event_poster.h"

#include <utility>

namespace kelvora {

AppDelegate::AppDelegate(const Desktop& desktop, const SessionServices& session)
    : AppDelegate(desktop, session, std::make_shared<SystemEventPoster>(desktop.eventPoster)) {}

AppDelegate::AppDelegate(const Desktop& desktop, const SessionServices& session,
                         std::shared_ptr<EventPosting> poster)
    : desktop_(desktop), model_(desktop, session),
      hotkey_(desktop.eventSource, desktop.dispatch, desktop.log),
      conversion_(desktop, model_, hotkey_.typedText(), std::move(poster)) {}

AppDelegate::~AppDelegate() {
    desktop_.workspace.setOnFocusChanged(nullptr);
}

void AppDelegate::launch() {
    const WeakHandle<AppDelegate> weak = self_.handle();
    hotkey_.onShiftEvent = [weak] {
        if (AppDelegate* delegate = weak.get()) {
            delegate->model_.setShiftEventCount(delegate->model_.shiftEventCount() + 1);
        }
    };
    hotkey_.onTrigger = [weak] {
        if (AppDelegate* delegate = weak.get()) {
            delegate->handleTrigger();
        }
    };
    hotkey_.onMouseDown = [weak] {
        if (AppDelegate* delegate = weak.get()) {
            // A paste, or what is typed back, would land where the click was.
            delegate->conversion_.focusChanged();
        }
    };
    model_.onSettingsChanged = [weak] {
        if (AppDelegate* delegate = weak.get()) {
            delegate->applySettings();
        }
    };
    desktop_.workspace.setOnFocusChanged([weak] {
        if (AppDelegate* delegate = weak.get()) {
            delegate->handleFocusChange();
        }
    });
    applySettings();
    enableAccessibility();
}

void AppDelegate::applySettings() {
    hotkey_.setMaximumInterval(model_.sensitivity());
    if (model_.isEnabled() && model_.accessibilityGranted()) {
        hotkey_.start();
    } else {
        hotkey_.stop();
    }
    std::string status = listenerStatus();
    if (status != model_.hotkeyStatus()) {
        model_.setHotkeyStatus(std::move(status));
    }
}

std::string AppDelegate::listenerStatus() {
    if (!model_.isEnabled()) {
        return "Disabled";
    }
    if (!model_.accessibilityGranted()) {
        return "Accessibility permission required";
    }
    // Not the monitor of this program's own events: that alone hears nobody else's Shift.
    if (hotkey_.eventTap() || hotkey_.globalMonitor()) {
        const std::string status = "Listening for double-Shift";
        return desktop_.sessionLimit.empty() ? status : status + ". " + desktop_.sessionLimit;
    }
    return "Keyboard listener could not start. Quit and reopen Kelvora.";
}

void AppDelegate::handleTrigger() {
    model_.setDoubleTapCount(model_.doubleTapCount() + 1);
    performConversion();
}

void AppDelegate::performConversion() {
    // Layouts may have been added or removed since the last look; a conversion under way keeps its
    // own.
    if (!conversion_.conversionInProgress()) {
        model_.refreshInputSources();
    }
    conversion_.performConversion(hotkey_.takeTextAtTrigger());
}

void AppDelegate::handleFocusChange() {
    // A Shift that went down here may come up where it is not seen.
    hotkey_.interpreter().reset();
    hotkey_.detector().reset();
    hotkey_.typedText()->reset();
    conversion_.focusChanged();
    enableAccessibility();
}

void AppDelegate::enableAccessibility() {
    // Long before it is needed: an application takes its time to build the tree.
    const auto application = desktop_.workspace.frontmostApplication();
    const auto process =
        application ? static_cast<std::int32_t>(application->processIdentifier) : 0;
    if (std::exchange(frontmostProcess_, process) != process && process != 0) {
        FocusedTextConverter::enableAccessibility(desktop_.accessibility, process);
    }
}

} // namespace kelvora
