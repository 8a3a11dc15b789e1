// SPDX-License-Identifier: MIT
#include "app/conversion/app_text_behavior.h"

#include "app/conversion/conversion_outcome.h"

#include <gtest/gtest.h>

#include <vector>

namespace kelvora {
namespace {

TEST(AppTextBehavior, IdentifiersAreComparedWholeAndWithCase) {
    struct Case {
        const char* bundleID;
        bool terminal, canvas;
    };
    const Case cases[] = {
        {"com.apple.Terminal", true, false},
        {"com.apple.terminal", false, false},
        {"dev.warp.Warp", true, false},
        {"dev.warp.Warp-Stable", true, false},
        {"dev.warp.Warp-Preview", false, false},
        {"org.alacritty", true, false},
        {"io.alacritty", true, false},
        {"io.alacritty ", false, false},
        {"com.figma.Desktop", false, true},
        {"com.figma.desktop", false, false},
        {"unknown", false, false},
        {"", false, false},
    };
    for (const Case& testCase : cases) {
        SCOPED_TRACE(testCase.bundleID);
        EXPECT_EQ(AppTextBehavior::isTerminal(testCase.bundleID), testCase.terminal);
        EXPECT_EQ(AppTextBehavior::isCanvasEditor(testCase.bundleID), testCase.canvas);
    }
}

TEST(ConversionOutcome, EqualOnlyInCaseAndPayload) {
    const std::vector<ConversionOutcome> outcomes{
        ConversionOutcome::converted(0), ConversionOutcome::converted(1),
        ConversionOutcome::failed(""),   ConversionOutcome::failed("reason"),
        ConversionOutcome::noText(),
    };
    for (std::size_t i = 0; i < outcomes.size(); ++i) {
        for (std::size_t j = 0; j < outcomes.size(); ++j) {
            EXPECT_EQ(outcomes[i] == outcomes[j], i == j) << i << " and " << j;
        }
    }
    EXPECT_EQ(ConversionOutcome::failed("reason"), outcomes[3]);
}

} // namespace
} // namespace kelvora
