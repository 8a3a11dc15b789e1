// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/atspi/atspi_focus.h"
#include "host/linux/event_loop.h"
#include "host/linux/secure_entry.h"

#include <functional>
#include <memory>

namespace kelvora {

class AtspiFocusWorker;

/// Follows the focus on a thread and a bus connection of its own, from what the applications tell
/// of it. Where there is no accessibility bus it waits for one, without polling.
class AtspiFocusFollower final : public AtspiFocus {
public:
    /// `onReport` is called on the main thread, in the order of what happened. The loop outlives
    /// the follower.
    AtspiFocusFollower(EventLoop& loop, std::function<void(const FocusReport&)> onReport);
    /// Waits for the thread, which may be in the middle of a question.
    ~AtspiFocusFollower() override;
    AtspiFocusFollower(const AtspiFocusFollower&) = delete;
    AtspiFocusFollower& operator=(const AtspiFocusFollower&) = delete;

    [[nodiscard]] std::optional<AtspiReference>
    focusedElement(std::int32_t processIdentifier) const override;
    [[nodiscard]] std::optional<AtspiReference> focusedElement() const override;

    /// Reports what has not been reported yet. Main thread only.
    void fetch();

    /// Asks the focused object, if it is a secret one, whether it has the focus still, and reports
    /// when it has not. Does not wait.
    void confirm();

private:
    std::unique_ptr<AtspiFocusWorker> worker_;
    std::function<void(const FocusReport&)> onReport_;
    std::unique_ptr<DescriptorWatch> watch_;
};

} // namespace kelvora
