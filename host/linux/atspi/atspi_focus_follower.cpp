// SPDX-License-Identifier: MIT
#include "host/linux/atspi/atspi_focus_follower.h"

#include "host/linux/atspi/atspi_focus_worker.h"

#include <chrono>
#include <utility>

namespace kelvora {

AtspiFocusFollower::AtspiFocusFollower(EventLoop& loop,
                                       std::function<void(const FocusReport&)> onReport)
    : worker_(std::make_unique<AtspiFocusWorker>()), onReport_(std::move(onReport)),
      watch_(worker_->reportDescriptor() >= 0
                 ? loop.watchReadable(worker_->reportDescriptor(), [this] { fetch(); })
                 : nullptr) {}

AtspiFocusFollower::~AtspiFocusFollower() = default;

std::optional<AtspiReference>
AtspiFocusFollower::focusedElement(std::int32_t processIdentifier) const {
    return worker_->focusedElement(processIdentifier);
}

std::optional<AtspiReference> AtspiFocusFollower::focusedElement() const {
    return worker_->focusedElement();
}

void AtspiFocusFollower::confirm() {
    worker_->confirm();
}

void AtspiFocusFollower::fetch() {
    for (const FocusReport& report : worker_->takeReports())
        onReport_(report);
}

} // namespace kelvora
