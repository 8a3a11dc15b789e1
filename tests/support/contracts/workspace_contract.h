// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/contracts/desktop_rig.h"

#include <gtest/gtest.h>

namespace kelvora::contract {

/// What every Workspace promises. Included and instantiated as the others.
class WorkspaceContract : public testing::TestWithParam<RigFactory> {
protected:
    std::unique_ptr<DesktopRig> rig = GetParam().make();
    Workspace& workspace = rig->services().workspace;
};

TEST_P(WorkspaceContract, FocusChangesAreToldInOrderWithTheKeys) {
    std::u16string order;
    workspace.setOnFocusChanged([&](FocusChange /*change*/) { order += u'|'; });
    const auto tap = rig->services().eventSource.createTap(
        eventMaskBit(EventType::keyDown),
        [&](const InputEvent& event) { order += event.text.view(); });
    ASSERT_TRUE(tap);
    tap->setEnabled(true);

    const FocusTarget before = workspace.focusTarget();
    EXPECT_NE(before, FocusTarget{});
    EXPECT_EQ(workspace.focusTarget(), before);
    rig->strike(keyQ);
    rig->focusOtherEditor();
    rig->strike(keyW);
    EXPECT_TRUE(rig->becomes([&] { return !order.empty() && order.back() == u'w'; }));
    EXPECT_EQ(order.front(), u'q');
    EXPECT_NE(order.find(u'|'), std::u16string::npos);
    EXPECT_NE(workspace.focusTarget(), before);
    EXPECT_NE(workspace.focusTarget(), FocusTarget{});
    EXPECT_TRUE(workspace.frontmostApplication());
    workspace.setOnFocusChanged(nullptr);
}

} // namespace kelvora::contract
