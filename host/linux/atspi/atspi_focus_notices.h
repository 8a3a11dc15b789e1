// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/atspi/atspi_connection.h"

#include <deque>
#include <memory>
#include <optional>
#include <string>

namespace kelvora {

struct AtspiFocusNotice {
    enum class Kind {
        focusGained,
        focusLost,
        windowActivated,
        windowDeactivated,
        windowFound, ///< active when it was asked; no application tells that
        roleChanged,
        applicationCame, ///< its root; it may not tell of its windows yet
        applicationGone, ///< the path means nothing
    };
    Kind kind;
    AtspiReference object;
};

/// What the applications tell of the focus, on a connection to the accessibility bus of its own.
/// They are asked for no more than that, because each kind of event costs every application. One
/// thread.
class AtspiFocusNotices {
public:
    /// Null when there is no accessibility bus now.
    [[nodiscard]] static std::unique_ptr<AtspiFocusNotices> connect();

    /// For questions and for waiting; leave dispatching to this class.
    [[nodiscard]] BusConnection& connection() { return *connection_; }
    /// Takes in what has arrived. False when the bus is gone.
    [[nodiscard]] bool dispatch() { return connection_->dispatch(); }
    /// The oldest notice; absent when there is none. Of what an application tells of its focus only
    /// the last few are kept.
    [[nodiscard]] std::optional<AtspiFocusNotice> take();
    [[nodiscard]] bool isEmpty() const { return notices_.empty(); }
    /// The focus may move, by what is still to be taken: within that application or to another.
    [[nodiscard]] bool announceFocus(const std::string& activeBusName) const;

private:
    AtspiFocusNotices() = default;
    [[nodiscard]] bool subscribe(BusConnection::Clock::time_point end);
    [[nodiscard]] bool registerEvents();
    void note(AtspiFocusNotice::Kind kind, AtspiReference object);

    std::deque<AtspiFocusNotice> notices_;
    std::unique_ptr<BusConnection> connection_;
};

} // namespace kelvora
