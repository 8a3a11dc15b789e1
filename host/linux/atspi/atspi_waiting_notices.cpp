// SPDX-License-Identifier: MIT
#include "host/linux/atspi/atspi_waiting_notices.h"

#include <cstddef>
#include <utility>

namespace kelvora {
namespace {

constexpr std::size_t mostWaiting = 8; // of one application

} // namespace

void AtspiWaitingNotices::add(AtspiFocusNotice notice) {
    std::vector<AtspiFocusNotice>& waiting = notices_[notice.object.busName];
    if (waiting.size() >= mostWaiting)
        waiting.erase(waiting.begin());
    waiting.push_back(std::move(notice));
}

std::vector<AtspiFocusNotice> AtspiWaitingNotices::take(const std::string& busName) {
    auto taken = notices_.extract(busName);
    return taken.empty() ? std::vector<AtspiFocusNotice>() : std::move(taken.mapped());
}

} // namespace kelvora
