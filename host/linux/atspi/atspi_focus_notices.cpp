// SPDX-License-Identifier: MIT
#include "host/linux/atspi/atspi_focus_notices.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace kelvora {
namespace {

/// Whoever tells more than this at once has moved on from the first of it. Not only the last,
/// because a page or a tab may be focused after the text in it.
constexpr std::ptrdiff_t mostFocusNotices = 8; // of one kind and application
constexpr std::chrono::milliseconds longestConnecting{2000};

const AtspiReference registry{"org.a11y.atspi.Registry", "/org/a11y/atspi/registry"};
constexpr const char* registryInterface = "org.a11y.atspi.Registry";
constexpr const char* wantedEvents[] = {"object:state-changed:focused",
                                        "object:property-change:accessible-role", "window:activate",
                                        "window:deactivate"};

template <typename Value>
const Value* argument(const BusSignal& signal, std::size_t index) {
    return index < signal.arguments.size() ? std::get_if<Value>(&signal.arguments[index]) : nullptr;
}

bool isOfFocus(const AtspiFocusNotice& notice) {
    using Kind = AtspiFocusNotice::Kind;
    return notice.kind == Kind::focusGained || notice.kind == Kind::focusLost ||
           notice.kind == Kind::roleChanged;
}

AtspiReference source(const BusSignal& signal) {
    return {signal.sender, signal.path};
}

} // namespace

std::unique_ptr<AtspiFocusNotices> AtspiFocusNotices::connect() {
    std::unique_ptr<AtspiFocusNotices> notices(new AtspiFocusNotices);
    notices->connection_ = openAtspiConnection();
    if (!notices->connection_)
        return nullptr;
    const auto end = BusConnection::Clock::now() + longestConnecting;
    notices->connection_->setDeadline(end);
    if (!notices->subscribe(end) || !notices->registerEvents())
        return nullptr;
    notices->connection_->clearDeadline();
    return notices;
}

std::optional<AtspiFocusNotice> AtspiFocusNotices::take() {
    if (notices_.empty())
        return std::nullopt;
    AtspiFocusNotice notice = std::move(notices_.front());
    notices_.pop_front();
    return notice;
}

bool AtspiFocusNotices::announceFocus(const std::string& activeBusName) const {
    using Kind = AtspiFocusNotice::Kind;
    return std::ranges::any_of(notices_, [&](const AtspiFocusNotice& notice) {
        return notice.kind == Kind::windowActivated ||
               (notice.kind == Kind::focusGained && notice.object.busName == activeBusName);
    });
}

bool AtspiFocusNotices::subscribe(BusConnection::Clock::time_point end) {
    using Kind = AtspiFocusNotice::Kind;
    const auto listen = [this, end](const std::string& rule, auto handler) {
        // A rule that is refused leaves its notices out; a lost connection shows when dispatching.
        if (BusConnection::Clock::now() < end)
            static_cast<void>(connection_->subscribe("type='signal'," + rule, std::move(handler)));
    };
    const std::string object = "interface='org.a11y.atspi.Event.Object',";
    listen(object + "member='StateChanged',arg0='focused'", [this](const BusSignal& signal) {
        if (const auto* isOn = argument<std::int32_t>(signal, 1))
            note(*isOn != 0 ? Kind::focusGained : Kind::focusLost, source(signal));
    });
    listen(object + "member='PropertyChange',arg0='accessible-role'",
           [this](const BusSignal& signal) { note(Kind::roleChanged, source(signal)); });
    listen("sender='org.a11y.atspi.Registry'," + object + "member='ChildrenChanged',arg0='add'",
           [this](const BusSignal& signal) {
               if (const auto* application = argument<AtspiReference>(signal, 3))
                   note(Kind::applicationCame, *application);
           });
    // GTK 4 writes the names in small letters.
    const std::pair<const char*, Kind> windowEvents[] = {{"Activate", Kind::windowActivated},
                                                         {"activate", Kind::windowActivated},
                                                         {"Deactivate", Kind::windowDeactivated},
                                                         {"deactivate", Kind::windowDeactivated}};
    for (const auto& [member, kind] : windowEvents)
        listen("interface='org.a11y.atspi.Event.Window',member='" + std::string(member) + "'",
               [this, kind = kind](const BusSignal& signal) { note(kind, source(signal)); });
    listen("sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
           "member='NameOwnerChanged',arg2=''",
           [this](const BusSignal& signal) {
               if (const auto* name = argument<std::string>(signal, 0))
                   note(Kind::applicationGone, {*name, {}});
           });
    return BusConnection::Clock::now() < end;
}

bool AtspiFocusNotices::registerEvents() {
    for (const char* event : wantedEvents) {
        const BusReply<BusNothing> reply = connection_->call<BusNothing>(
            registry, registryInterface, "RegisterEvent",
            {std::string(event), std::vector<std::string>{}, std::string{}});
        // Before at-spi2-core 2.35 it takes the name only.
        if (!reply && !connection_->call<BusNothing>(registry, registryInterface, "RegisterEvent",
                                                     {std::string(event)}))
            return false;
    }
    return true;
}

void AtspiFocusNotices::note(AtspiFocusNotice::Kind kind, AtspiReference object) {
    notices_.push_back({kind, std::move(object)});
    const auto isSame = [last = &notices_.back()](const AtspiFocusNotice& notice) {
        return notice.kind == last->kind && notice.object.busName == last->object.busName;
    };
    if (isOfFocus(notices_.back()) && std::ranges::count_if(notices_, isSame) > mostFocusNotices)
        notices_.erase(std::ranges::find_if(notices_, isSame));
}

} // namespace kelvora
