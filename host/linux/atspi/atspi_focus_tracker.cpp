// SPDX-License-Identifier: MIT
#include "host/linux/atspi/atspi_focus_tracker.h"

namespace kelvora {

void AtspiFocusTracker::windowActivated(const AtspiReference& window) {
    applications_[window.busName].tellsOfWindows = true;
    windowFound(window);
}

void AtspiFocusTracker::windowFound(const AtspiReference& window) {
    Application& application = applications_[window.busName];
    if (application.activeWindow != window.path)
        application.leftText.reset();
    application.activeWindow = window.path;
    activate(window.busName);
}

void AtspiFocusTracker::windowDeactivated(const AtspiReference& window) {
    Application& application = applications_[window.busName];
    application.tellsOfWindows = true;
    // Another window of the same application may have been activated before.
    if (!application.activeWindow.empty() && application.activeWindow != window.path)
        return;
    application.activeWindow.clear();
    application.focus.reset();
    application.leftText.reset();
    if (active_ == window.busName)
        deactivate();
}

void AtspiFocusTracker::focusGained(const AtspiReference& object, AtspiObjectKind kind) {
    Application& application = applications_[object.busName];
    application.focus = Focus{object, kind};
    application.leftText.reset();
    application.focusedAt = ++lastEvent_;
    // An application that tells of its windows may also focus something in one that is not active.
    if (active_.empty() && !application.tellsOfWindows)
        activate(object.busName);
}

void AtspiFocusTracker::focusLost(const AtspiReference& object) {
    if (!hasFocus(object))
        return;
    Application& application = applications_[object.busName];
    if (application.focus->kind.isText)
        application.leftText = application.focus;
    application.focus.reset();
}

void AtspiFocusTracker::returnToText(const std::string& busName) {
    const auto found = applications_.find(busName);
    if (found != applications_.end() && found->second.leftText)
        focusGained(found->second.leftText->object, found->second.leftText->kind);
}

void AtspiFocusTracker::applicationGone(const std::string& busName) {
    applications_.erase(busName);
    if (active_ == busName)
        deactivate();
    if (lastText_ && lastText_->busName == busName)
        lastText_.reset();
}

void AtspiFocusTracker::setProcess(const std::string& busName, std::int32_t processIdentifier) {
    applications_[busName].process = processIdentifier;
}

bool AtspiFocusTracker::knowsProcess(const std::string& busName) const {
    const auto found = applications_.find(busName);
    return found != applications_.end() && found->second.process != 0;
}

bool AtspiFocusTracker::hasFocus(const AtspiReference& object) const {
    const auto found = applications_.find(object.busName);
    return found != applications_.end() && found->second.focus &&
           found->second.focus->object == object;
}

bool AtspiFocusTracker::hasAnyFocus(const std::string& busName) const {
    const auto found = applications_.find(busName);
    return found != applications_.end() && found->second.focus.has_value();
}

std::optional<AtspiReference> AtspiFocusTracker::lastText(const std::string& busName) const {
    const auto found = applications_.find(busName);
    if (found == applications_.end())
        return std::nullopt;
    const Application& application = found->second;
    if (application.focus && application.focus->kind.isText)
        return application.focus->object;
    return application.leftText ? std::optional(application.leftText->object) : std::nullopt;
}

std::optional<AtspiReference> AtspiFocusTracker::focusedElement(std::int32_t process) const {
    for (const auto& [busName, application] : applications_) {
        if (application.process == process && process != 0 && application.focus)
            return application.focus->object;
    }
    return std::nullopt;
}

std::optional<AtspiReference> AtspiFocusTracker::focusedElement() const {
    const Application* application = activeApplication();
    if (application == nullptr || !application->focus)
        return std::nullopt;
    return application->focus->object;
}

std::optional<AtspiReference> AtspiFocusTracker::secretFocus() const {
    const Application* application = activeApplication();
    if (application == nullptr || !application->focus || !application->focus->kind.isSecret)
        return std::nullopt;
    return application->focus->object;
}

FocusReport AtspiFocusTracker::report() {
    FocusReport report{.secrecy = FocusSecrecy::ordinary, .isOtherText = false};
    const Application* application = activeApplication();
    if (application == nullptr || !application->focus)
        return report;
    const Focus& focus = *application->focus;
    if (focus.kind.isSecret)
        report.secrecy = FocusSecrecy::secret;
    if (focus.kind.isText) {
        report.isText = true;
        report.isOtherText = lastText_ && *lastText_ != focus.object;
        lastText_ = focus.object;
    }
    return report;
}

void AtspiFocusTracker::activate(const std::string& busName) {
    active_ = busName;
    activeSince_ = ++lastEvent_;
}

void AtspiFocusTracker::deactivate() {
    active_.clear();
    // The focus of an application that does not tell of its windows may be told before the other's
    // window is said to be left. What it had before that is of another time.
    std::uint64_t latest = activeSince_;
    for (const auto& [busName, application] : applications_) {
        if (application.tellsOfWindows || !application.focus || application.focusedAt <= latest)
            continue;
        latest = application.focusedAt;
        active_ = busName;
    }
    if (!active_.empty())
        activeSince_ = ++lastEvent_;
}

const AtspiFocusTracker::Application* AtspiFocusTracker::activeApplication() const {
    const auto found = applications_.find(active_);
    return found != applications_.end() ? &found->second : nullptr;
}

} // namespace kelvora
