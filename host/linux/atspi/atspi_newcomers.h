// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/atspi/atspi_connection.h"

#include <optional>
#include <string>
#include <vector>

namespace kelvora {

/// Applications that have just come to the accessibility bus. An application tells nothing (GTK 3)
/// until it has learnt that somebody listens; its first window may be active by then, and stay so
/// without a word. So they are looked at a few times. One thread.
class AtspiNewcomers {
public:
    using Clock = BusConnection::Clock;

    /// `application` is its root.
    void add(const AtspiReference& application);
    /// All that are on the bus.
    void addAll(BusConnection& connection);
    /// It has told of a window, or it is gone.
    void remove(const std::string& busName);

    /// When somebody is to be looked at; absent: nobody.
    [[nodiscard]] std::optional<Clock::time_point> next() const;
    /// The active windows of those whose time has come.
    [[nodiscard]] std::vector<AtspiReference> look(BusConnection& connection);

private:
    struct Newcomer {
        AtspiReference application;
        Clock::time_point next;
        std::size_t looks = 0;
    };

    std::vector<Newcomer> newcomers_;
};

} // namespace kelvora
