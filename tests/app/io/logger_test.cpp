// SPDX-License-Identifier: MIT
#include "app/io/logger.h"

#include "tests/support/fake_desktop/recording_log.h"

#include <gtest/gtest.h>
#include <limits>

namespace kelvora {
namespace {

TEST(Logger, StringsArePrivateNumbersAndBooleansPublic) {
    fake::RecordingLog log;
    const Logger logger(log, "Conversion");
    const std::string text = "secret";
    constexpr auto lowest = std::numeric_limits<std::int64_t>::min();
    logger.info("a=%s, b=%ld, c=%hu, d=%{bool}d!", text, -7L, std::uint16_t{65535}, true);
    logger.error("%s%s at %ld", "secret", std::string_view(text), lowest);
    logger.debug("100 %{bool}d and nothing else", false);
    using Line = fake::RecordingLog::Line;
    EXPECT_EQ(log.lines(),
              (std::vector<Line>{
                  {LogLevel::info, "Conversion", "a=<private>, b=-7, c=65535, d=true!"},
                  {LogLevel::error, "Conversion", "<private><private> at -9223372036854775808"},
                  {LogLevel::debug, "Conversion", "100 false and nothing else"},
              }));
}

} // namespace
} // namespace kelvora
