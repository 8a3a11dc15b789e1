// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/atspi/atspi_connection.h"

#include <chrono>
#include <functional>
#include <optional>
#include <vector>

namespace kelvora {

/// Looks for the focused object of one window, for applications that have not told of it. Goes one
/// object at a time, so that what the applications tell meanwhile can be heard. One thread.
class AtspiFocusSearch {
public:
    /// No more objects are looked at, nor for longer.
    static constexpr int mostObjects = 600;
    static constexpr std::chrono::milliseconds longestSearch{600};

    explicit AtspiFocusSearch(AtspiReference window);

    [[nodiscard]] const AtspiReference& window() const { return window_; }
    enum class Step {
        goOn,
        finished,
        unanswered, ///< the application does not answer now
    };
    /// Looks at one more object.
    [[nodiscard]] Step step(BusConnection& connection);
    /// The focused object, one with a text if there is any. Absent while there is none.
    [[nodiscard]] const std::optional<AtspiReference>& found() const { return found_; }

private:
    AtspiReference window_;
    std::vector<AtspiReference> toVisit_; ///< the last one next
    /// What is not shown, or in a toolkit that does not tell (GTK 4); looked at when all else is
    /// done.
    std::vector<AtspiReference> hidden_;
    bool isLookingAtHidden_ = false;
    std::chrono::steady_clock::time_point end_;
    int objects_ = 0;
    std::optional<AtspiReference> found_;
};

/// The roots of all applications on the bus.
[[nodiscard]] std::vector<AtspiReference> applicationsOn(BusConnection& connection);
/// The application's windows that are active now; none when it does not answer in a short time.
[[nodiscard]] std::vector<AtspiReference> activeWindowsOf(BusConnection& connection,
                                                          const AtspiReference& application);
/// The windows that are active now, of all applications that answer in a short time. Ends early
/// when `isStopping` says so.
[[nodiscard]] std::vector<AtspiReference>
findActiveWindows(BusConnection& connection, const std::function<bool()>& isStopping);

} // namespace kelvora
