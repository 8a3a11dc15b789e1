// SPDX-License-Identifier: MIT
#include "app/shell/app_delegate.h"

#include "app/conversion/focused_text_converter.h"
#include "app/io/system_event_poster.h"

#include <utility>

namespace kelvora {

AppDelegate::AppDelegate(const Desktop& desktop, const SessionServices& session,
                         UserInterface& interface)
    : AppDelegate(desktop, session, interface,
                  std::make_shared<SystemEventPoster>(desktop.eventPoster)) {}

AppDelegate::AppDelegate(const Desktop& desktop, const SessionServices& session,
                         UserInterface& interface, std::shared_ptr<EventPosting> poster)
    : desktop_(desktop), session_(session), interface_(interface), model_(desktop, session),
      hotkey_(desktop.eventSource, desktop.dispatch, desktop.log),
      conversion_(desktop, model_, hotkey_.typedText(), std::move(poster)) {}

AppDelegate::~AppDelegate() {
    desktop_.workspace.setOnFocusChanged(nullptr);
}

void AppDelegate::launch() {
    session_.singleInstance.setOnReplaced(weakly(&AppDelegate::handleReplaced));
    session_.singleInstance.setOnReopen(weakly(&AppDelegate::showPreferences));
    session_.singleInstance.claim();
    interface_.becomeAccessory();
    updater_.emplace(session_.makeUpdater, [this] { interface_.activate(); });
    installMenus();
    wireMonitor();
    model_.onSettingsChanged = weakly(&AppDelegate::applySettings);
    applySettings();
    if (!session_.launchedInBackground) {
        showPreferences();
    }
    observeSession();
    enableAccessibility();
    listenerHealthTimer_ = session_.timers.repeat(
        healthCheckInterval,
        [&dispatch = desktop_.dispatch, check = weakly(&AppDelegate::checkListenerHealth)] {
            dispatch.postToMain(check);
        });
}

void AppDelegate::installMenus() {
    interface_.setMainMenu(mainMenu());
    interface_.showStatusItem(statusMenu());
    interface_.setOnMenuAction([weak = self_.handle()](MenuAction action) {
        if (AppDelegate* delegate = weak.get()) {
            delegate->handleMenuAction(action);
        }
    });
}

void AppDelegate::wireMonitor() {
    hotkey_.onShiftEvent = weakly(&AppDelegate::handleShiftEvent);
    hotkey_.onTrigger = weakly(&AppDelegate::handleTrigger);
    hotkey_.onMouseDown = weakly(&AppDelegate::handleMouseDown);
}

void AppDelegate::observeSession() {
    session_.sessionEvents.setOnWake(weakly(&AppDelegate::handleSystemWake));
    session_.displayEvents.setOnDisplayWake(weakly(&AppDelegate::handleSystemWake));
    session_.sessionEvents.setOnBecameActive(weakly(&AppDelegate::handleSessionActive));
    session_.sessionEvents.setOnResignedActive(weakly(&AppDelegate::handleSessionResign));
    desktop_.workspace.setOnFocusChanged(weakly(&AppDelegate::handleFocusChange));
    session_.accessibilityStatus.setOnChanged(weakly(&AppDelegate::handleAccessibilityChanged));
}

void AppDelegate::applySettings() {
    interface_.setEnableItemState(model_.isEnabled());
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
    if (desktop_.secureInput.isSecureEventInputEnabled()) {
        return "Secure keyboard input is active. Leave password fields or disable Secure Keyboard "
               "Entry in Terminal.";
    }
    // Not the monitor of this program's own events: that alone hears nobody else's Shift.
    if (hotkey_.eventTap() || hotkey_.globalMonitor()) {
        const std::string status = "Listening for double-Shift";
        return desktop_.sessionLimit.empty() ? status : status + ". " + desktop_.sessionLimit;
    }
    return "Keyboard listener could not start. Quit and reopen Kelvora.";
}

void AppDelegate::checkListenerHealth() {
    if (!model_.isEnabled() || !model_.accessibilityGranted()) {
        return;
    }
    reviveListener();
}

void AppDelegate::reviveListener() {
    if (EventTap* tap = hotkey_.eventTap()) {
        if (!tap->isEnabled()) {
            tap->setEnabled(true);
        }
    } else {
        restartListener();
    }
}

void AppDelegate::restartListener() {
    hotkey_.stop();
    hotkey_.start();
}

void AppDelegate::showPreferences() {
    interface_.showPreferences(model_);
    model_.refreshPermissions();
    model_.refreshInputSources();
}

void AppDelegate::handleMenuAction(MenuAction action) {
    switch (action) {
    case MenuAction::toggleEnabled:
        model_.setIsEnabled(!model_.isEnabled());
        break;
    case MenuAction::showPreferences:
        showPreferences();
        break;
    case MenuAction::checkForUpdates:
        updater_->checkForUpdates();
        break;
    case MenuAction::quit:
        interface_.terminate();
        break;
    default: // text is edited by the window itself
        break;
    }
}

void AppDelegate::handleReplaced() {
    // Before anything else: the newer copy listens already, and a double tap is for one of us.
    hotkey_.stop();
    interface_.terminate();
}

void AppDelegate::handleSystemWake() {
    model_.refreshPermissions();
    model_.refreshInputSources();
    applySettings();
    restartListener();
}

void AppDelegate::handleSessionActive() {
    model_.refreshPermissions();
    applySettings();
    reviveListener();
}

void AppDelegate::handleSessionResign() {
    hotkey_.interpreter().reset();
    hotkey_.detector().reset();
    hotkey_.forgetTypedText();
}

void AppDelegate::handleAccessibilityChanged() {
    model_.refreshPermissions();
    applySettings();
}

void AppDelegate::handleShiftEvent() {
    model_.setShiftEventCount(model_.shiftEventCount() + 1);
}

void AppDelegate::handleTrigger() {
    model_.setDoubleTapCount(model_.doubleTapCount() + 1);
    performConversion();
}

void AppDelegate::handleMouseDown() {
    // A paste, or what is typed back, would land where the click was.
    conversion_.focusChanged();
}

void AppDelegate::performConversion() {
    // Behind a locker nothing is the user's to repair.
    if (session_.sessionEvents.isLocked()) {
        Logger(desktop_.log, "Conversion").info("performConversion skipped: the session is locked");
        return;
    }
    // Layouts may have been added or removed since the last look; a conversion under way keeps its
    // own.
    if (model_.isEnabled() && !conversion_.conversionInProgress()) {
        model_.refreshInputSources();
    }
    conversion_.performConversion(hotkey_.takeTextAtTrigger());
}

void AppDelegate::handleFocusChange(FocusChange change) {
    if (change == FocusChange::keysMissed) {
        // A Shift that went down here may come up where it is not seen.
        hotkey_.interpreter().reset();
        hotkey_.detector().reset();
    }
    hotkey_.forgetTypedText();
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
