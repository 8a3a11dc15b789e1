// SPDX-License-Identifier: MIT
#include "tests/support/real_desktop/text_application.h"

#include "tests/support/real_desktop/wait_until.h"

namespace kelvora::real {

bool TextApplication::showsText(const std::string& expected, std::chrono::milliseconds settle) {
    const auto isShown = [&] { return text() == expected; };
    return waitUntil(isShown, std::chrono::seconds(4)) && staysTrue(isShown, settle);
}

} // namespace kelvora::real
