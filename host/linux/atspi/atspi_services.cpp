// SPDX-License-Identifier: MIT
#include "host/linux/atspi/atspi_services.h"

#include <chrono>

namespace kelvora {

AtspiServices::AtspiServices(EventLoop& loop, SecureEntry& secureEntry)
    : secureEntry_(secureEntry), follower_(loop, [&secureEntry](const FocusReport& report) {
          secureEntry.report(report, std::chrono::steady_clock::now());
      }) {
    secureEntry_.setFetch([this] { follower_.fetch(); });
    secureEntry_.setConfirm([this] { follower_.confirm(); });
}

AtspiServices::~AtspiServices() {
    secureEntry_.setFetch(nullptr);
    secureEntry_.setConfirm(nullptr);
}

} // namespace kelvora
