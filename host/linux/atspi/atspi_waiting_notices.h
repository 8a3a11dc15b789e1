// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/atspi/atspi_focus_notices.h"

#include <map>
#include <string>
#include <vector>

namespace kelvora {

/// What applications have told of their focus while another one was active; to be handled when they
/// become active themselves. The last few notices of each. One thread.
class AtspiWaitingNotices {
public:
    void add(AtspiFocusNotice notice);
    /// Those of the application, in their order; they do not wait any more.
    [[nodiscard]] std::vector<AtspiFocusNotice> take(const std::string& busName);
    void forget(const std::string& busName) { notices_.erase(busName); }
    void clear() { notices_.clear(); }

private:
    std::map<std::string, std::vector<AtspiFocusNotice>> notices_; ///< by bus name
};

} // namespace kelvora
