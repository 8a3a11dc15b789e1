// SPDX-License-Identifier: MIT
#include "host/linux/atspi/atspi_session.h"

namespace kelvora {
namespace {

/// More applications than anybody runs; those that have ended are forgotten with the rest.
constexpr std::size_t mostApplications = 256;
/// Later than this, what stands there may as well be the user's own.
constexpr std::chrono::seconds longestMemory{30};

} // namespace

AccessibilityError toAccessibilityError(BusError error) {
    switch (error) {
    case BusError::none:
        return AccessibilityError::success;
    case BusError::timedOut:
    case BusError::notAsked:
    case BusError::lost:
        return AccessibilityError::cannotComplete;
    case BusError::gone:
        return AccessibilityError::invalidElement;
    case BusError::unsupported:
        return AccessibilityError::attributeUnsupported;
    case BusError::refused:
        break;
    }
    return AccessibilityError::failure;
}

bool AtspiSession::begin(std::chrono::milliseconds limit) {
    // Answers that came too late are thrown away here.
    if (connection_ && !connection_->dispatch())
        connection_.reset();
    if (!connection_) {
        const auto now = Clock::now();
        if (now < nextAttempt_)
            return false;
        nextAttempt_ = now + restAfterTimeout;
        applications_.clear();
        connection_ = openAtspiConnection();
        if (!connection_)
            return false;
    }
    extend(limit);
    return true;
}

void AtspiSession::extend(std::chrono::milliseconds limit) {
    if (connection_)
        connection_->setDeadline(Clock::now() + limit);
}

BusReply<AtspiStates> AtspiSession::states(const AtspiReference& object) {
    const auto reply = call<std::vector<std::uint32_t>>(object, atspi::accessible, "GetState");
    return {reply.error, AtspiStates(reply.value)};
}

BusReply<Toolkit> AtspiSession::toolkit(const AtspiReference& object) {
    if (const auto known = applications_[object.busName].toolkit)
        return {BusError::none, *known};
    // Its path is the toolkit's choice.
    const auto root = call<AtspiReference>(object, atspi::accessible, "GetApplication");
    if (isWithoutAnswer(root.error))
        return {root.error, Toolkit::other};
    const auto name = property<std::string>(root.value, atspi::application, "ToolkitName");
    Toolkit toolkit = Toolkit::other;
    if (name.value == "Qt")
        toolkit = Toolkit::qt;
    else if (name.value == "gtk" || name.value == "GTK")
        toolkit = Toolkit::gtk;
    if (isWithoutAnswer(name.error))
        return {name.error, toolkit};
    applications_[object.busName].toolkit = toolkit;
    if (toolkit == Toolkit::qt)
        learnOffsetUnit(object, OffsetUnit::utf16);
    return {BusError::none, toolkit};
}

std::optional<OffsetUnit> AtspiSession::offsetUnit(const AtspiReference& object) {
    return applications_[object.busName].offsetUnit;
}

void AtspiSession::learnOffsetUnit(const AtspiReference& object, OffsetUnit unit) {
    applications_[object.busName].offsetUnit = unit;
}

std::optional<UnansweredInsertion> AtspiSession::unanswered(const AtspiReference& object) {
    if (unanswered_ && Clock::now() > unanswered_->since + longestMemory)
        unanswered_.reset();
    return unanswered_ && unanswered_->object == object ? unanswered_ : std::nullopt;
}

BusError AtspiSession::mayAsk(const AtspiReference& object) {
    if (!connection_)
        return BusError::lost;
    if (applications_.size() > mostApplications)
        applications_.clear();
    return Clock::now() < applications_[object.busName].restsUntil ? BusError::notAsked
                                                                   : BusError::none;
}

void AtspiSession::note(const AtspiReference& object, BusError error) {
    if (error == BusError::lost)
        connection_.reset();
    if (error != BusError::timedOut && error != BusError::notAsked)
        return;
    Application& application = applications_[object.busName];
    const auto now = Clock::now();
    if (application.restsUntil <= now)
        application.restsUntil = now + restAfterTimeout;
}

} // namespace kelvora
