// SPDX-License-Identifier: MIT
#include "host/linux/atspi/atspi_newcomers.h"

#include "host/linux/atspi/atspi_focus_search.h"

#include <algorithm>
#include <array>
#include <chrono>

namespace kelvora {
namespace {

using namespace std::chrono_literals;

/// From one look to the next. Close together at first: what is typed into a window that has just
/// come waits only so long to be told from a password.
constexpr std::array pauses{50ms, 100ms, 150ms, 300ms, 700ms, 1500ms, 3000ms};

} // namespace

void AtspiNewcomers::add(const AtspiReference& application) {
    remove(application.busName);
    newcomers_.push_back({application, Clock::now() + pauses.front()});
}

void AtspiNewcomers::addAll(BusConnection& connection) {
    for (const AtspiReference& application : applicationsOn(connection))
        add(application);
}

void AtspiNewcomers::remove(const std::string& busName) {
    std::erase_if(newcomers_, [&](const Newcomer& newcomer) {
        return newcomer.application.busName == busName;
    });
}

std::optional<AtspiNewcomers::Clock::time_point> AtspiNewcomers::next() const {
    const auto first = std::ranges::min_element(newcomers_, {}, &Newcomer::next);
    return first != newcomers_.end() ? std::optional(first->next) : std::nullopt;
}

std::vector<AtspiReference> AtspiNewcomers::look(BusConnection& connection) {
    const auto now = Clock::now();
    std::vector<AtspiReference> active;
    for (Newcomer& newcomer : newcomers_) {
        if (newcomer.next > now)
            continue;
        for (AtspiReference& window : activeWindowsOf(connection, newcomer.application))
            active.push_back(std::move(window));
        if (++newcomer.looks < pauses.size())
            newcomer.next = now + pauses.at(newcomer.looks);
    }
    std::erase_if(newcomers_,
                  [](const Newcomer& newcomer) { return newcomer.looks == pauses.size(); });
    return active;
}

} // namespace kelvora
