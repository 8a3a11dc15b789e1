// SPDX-License-Identifier: MIT
#include "host/linux/updates/update_version.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kelvora {
namespace {

TEST(UpdateVersion, sortsAsDpkgDoes) {
    // From the oldest to the newest; what stands in one row is the same version.
    const std::vector<std::vector<std::string>> ordered{
        {"0.9"},           {"1.0~~"},     {"1.0~beta2"},
        {"1.0~beta10"},    {"1.0~rc1-1"}, {"1.0", "1.00", "0:1.0", "01.0", "1.0-0"},
        {"1.0-1~bpo12+1"}, {"1.0-1"},     {"1.0-1+b1"},
        {"1.0a"},          {"1.0+1"},     {"1.0.1"},
        {"1.2"},           {"1.10"},      {"1.18446744073709551616"},
        {"1:0.1"},
    };
    for (std::size_t left = 0; left < ordered.size(); ++left)
        for (std::size_t right = 0; right < ordered.size(); ++right)
            for (const std::string& one : ordered[left])
                for (const std::string& other : ordered[right]) {
                    const auto older = UpdateVersion::parse(one);
                    const auto newer = UpdateVersion::parse(other);
                    ASSERT_TRUE(older && newer) << one << " " << other;
                    EXPECT_TRUE((*older <=> *newer) == (left <=> right)) << one << " " << other;
                }
}

TEST(UpdateVersion, refusesWhatDpkgOrAFileNameWouldNotTake) {
    for (const std::string text : {"", "v1.0", "-1", "1.0-", "1.0 ", "1/../../x", "a:1", ":1",
                                   "1:2:3", "99999999999:1", "1.0\n", "1_0", "1.é"})
        EXPECT_FALSE(UpdateVersion::parse(text)) << text;
    EXPECT_FALSE(UpdateVersion::parse(std::string(65, '1')));
    EXPECT_FALSE(UpdateVersion::parse(std::string_view("1\0", 2)));
}

} // namespace
} // namespace kelvora
