// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/atspi/atspi_connection.h"

#include <deque>
#include <memory>
#include <optional>

namespace kelvora {

struct AtspiFocusNotice {
    enum class Kind {
        focusGained,
        focusLost,
        windowActivated,
        windowDeactivated,
        roleChanged,
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
    /// The oldest notice; absent when there is none.
    [[nodiscard]] std::optional<AtspiFocusNotice> take();

private:
    AtspiFocusNotices() = default;
    void subscribe();
    [[nodiscard]] bool registerEvents();
    void note(AtspiFocusNotice::Kind kind, AtspiReference object);

    std::deque<AtspiFocusNotice> notices_;
    std::unique_ptr<BusConnection> connection_;
};

} // namespace kelvora
