// SPDX-License-Identifier: MIT
#include "host/linux/atspi/atspi_focus_search.h"

#include <algorithm>
#include <utility>

namespace kelvora {
namespace {

using Clock = BusConnection::Clock;

constexpr std::chrono::milliseconds longestQuestion{50};
constexpr std::chrono::milliseconds longestLookAtWindows{1000};
constexpr std::size_t mostWindows = 64; // of one application
constexpr std::int32_t mostManagedChildren = 256;

std::vector<AtspiReference> childrenOf(BusConnection& connection, const AtspiReference& object) {
    connection.setDeadline(Clock::now() + longestQuestion);
    return connection.call<std::vector<AtspiReference>>(object, atspi::accessible, "GetChildren")
        .value;
}

BusReply<AtspiStates> statesOf(BusConnection& connection, const AtspiReference& object) {
    connection.setDeadline(Clock::now() + longestQuestion);
    return readStates(connection, object);
}

bool hasText(BusConnection& connection, const AtspiReference& object) {
    connection.setDeadline(Clock::now() + longestQuestion);
    const std::vector<std::string> interfaces = readInterfaces(connection, object).value;
    return std::ranges::find(interfaces, atspi::text) != interfaces.end();
}

bool hasFewChildren(BusConnection& connection, const AtspiReference& object) {
    connection.setDeadline(Clock::now() + longestQuestion);
    const auto count = connection.property<std::int32_t>(object, atspi::accessible, "ChildCount");
    return count && count.value <= mostManagedChildren;
}

} // namespace

AtspiFocusSearch::AtspiFocusSearch(AtspiReference window)
    : window_(std::move(window)), toVisit_{window_}, end_(Clock::now() + longestSearch) {}

AtspiFocusSearch::Step AtspiFocusSearch::step(BusConnection& connection) {
    if (toVisit_.empty() && !isLookingAtHidden_ && !found_) {
        isLookingAtHidden_ = true;
        toVisit_ = std::move(hidden_);
        std::ranges::reverse(toVisit_);
    }
    if (toVisit_.empty() || ++objects_ > mostObjects || Clock::now() >= end_)
        return Step::finished;
    const AtspiReference object = std::move(toVisit_.back());
    toVisit_.pop_back();
    const BusReply<AtspiStates> states = statesOf(connection, object);
    if (states.error == BusError::timedOut || states.error == BusError::notAsked)
        return Step::unanswered;
    if (!isLookingAtHidden_ && !states.value.has(AtspiState::showing) && object != window_) {
        hidden_.push_back(object);
        return Step::goOn;
    }
    if (states.value.has(AtspiState::focused)) {
        found_ = object;
        if (hasText(connection, object))
            return Step::finished;
    }
    // Tables have as many cells as they like; a document has the paragraphs that are seen.
    if (states.value.has(AtspiState::managesDescendants) && !hasFewChildren(connection, object))
        return Step::goOn;
    std::vector<AtspiReference> children = childrenOf(connection, object);
    std::ranges::reverse(children);
    toVisit_.insert(toVisit_.end(), children.begin(), children.end());
    return Step::goOn;
}

std::vector<AtspiReference> applicationsOn(BusConnection& connection) {
    std::vector<AtspiReference> applications = childrenOf(connection, atspi::registryRoot);
    connection.clearDeadline();
    return applications;
}

std::vector<AtspiReference> activeWindowsOf(BusConnection& connection,
                                            const AtspiReference& application) {
    std::vector<AtspiReference> windows = childrenOf(connection, application);
    windows.resize(std::min(windows.size(), mostWindows));
    bool isAnswering = true;
    std::erase_if(windows, [&](const AtspiReference& window) {
        const auto states = isAnswering ? statesOf(connection, window)
                                        : BusReply<AtspiStates>{BusError::notAsked, {}};
        isAnswering = !isWithoutAnswer(states.error);
        return !states.value.has(AtspiState::active);
    });
    connection.clearDeadline();
    return windows;
}

std::vector<AtspiReference> findActiveWindows(BusConnection& connection,
                                              const std::function<bool()>& isStopping) {
    const auto end = Clock::now() + longestLookAtWindows;
    std::vector<AtspiReference> active;
    for (const AtspiReference& application : applicationsOn(connection)) {
        if (Clock::now() >= end || isStopping())
            break;
        for (AtspiReference& window : activeWindowsOf(connection, application))
            active.push_back(std::move(window));
    }
    return active;
}

} // namespace kelvora
