// SPDX-License-Identifier: MIT
#include "app/ui/drag_guide/drag_guide_animation.h"

#include <gtest/gtest.h>

namespace kelvora {
namespace {

TEST(DragGuideAnimation, IconIsDraggedIntoTheListAndFades) {
    const struct {
        double t;
        DragIconState icon;
    } cases[] = {
        {0, {320, 36, 1}},    {0.699, {320, 36, 1}},
        {0.7, {320, 36, 1}},  {1.025, {288.75, 47.875, 1}},
        {1.35, {220, 74, 1}}, {1.675, {151.25, 100.125, 1}},
        {2.0, {120, 112, 1}}, {2.15, {120, 112, 0.5}},
        {2.3, {120, 112, 0}}, {4.99, {120, 112, 0}},
    };
    for (const auto& [t, expected] : cases) {
        SCOPED_TRACE(t);
        const DragIconState icon = calculateDragIconState(t);
        EXPECT_NEAR(icon.x, expected.x, 1e-9);
        EXPECT_NEAR(icon.y, expected.y, 1e-9);
        EXPECT_NEAR(icon.opacity, expected.opacity, 1e-9);
    }
}

TEST(DragGuideAnimation, PointerFetchesTheIconAndPressesTheSwitch) {
    const struct {
        double t;
        CursorState cursor;
    } cases[] = {
        {0, {380, 18, 1}},
        {0.35, {355, 31, 1}},
        {0.7, {330, 44, 0.92}},
        {1.35, {230, 82, 0.92}},
        {2.0, {130, 120, 1}},
        {2.15, {143.10546875, 119.65625, 1}},
        {2.6, {282.5, 116, 1}},
        {3.2, {435, 112, 0.88}},
        {3.599, {435, 112, 0.88}},
        {3.6, {435, 112, 1}},
        {4.1, {445, 132, 1}}, // a second long, whatever is left of the
                              // loop
        {4.6, {455, 152, 1}},
        {4.99, {455, 152, 1}},
    };
    for (const auto& [t, expected] : cases) {
        SCOPED_TRACE(t);
        const CursorState cursor = calculateCursorState(t);
        EXPECT_NEAR(cursor.x, expected.x, 1e-9);
        EXPECT_NEAR(cursor.y, expected.y, 1e-9);
        EXPECT_EQ(cursor.scale, expected.scale);
    }
}

TEST(DragGuideAnimation, PhasesFollowTheirTimes) {
    const struct {
        double t;
        bool isHighlighted, isLanded, isOn;
    } cases[] = {
        {0, false, false, false},   {1.49, false, false, false}, {1.5, true, false, false},
        {1.99, true, false, false}, {2.0, false, true, false},   {3.19, false, true, false},
        {3.2, false, true, true},   {4.99, false, true, true},
    };
    for (const auto& [t, isHighlighted, isLanded, isOn] : cases) {
        SCOPED_TRACE(t);
        EXPECT_EQ(isLandingHighlight(t), isHighlighted);
        EXPECT_EQ(hasLanded(t), isLanded);
        EXPECT_EQ(isSwitchedOn(t), isOn);
    }
}

TEST(DragGuideAnimation, LoopStartsAgainAtZero) {
    EXPECT_EQ(nextAnimationTime(4.9651), 0) << "what is over five seconds is not carried on";
    int ticks = 0;
    double t = 0;
    do {
        t = nextAnimationTime(t);
        ++ticks;
        ASSERT_LT(t, 5);
    } while (t != 0 && ticks < 1000);
    EXPECT_EQ(ticks, 143);
}

} // namespace
} // namespace kelvora
