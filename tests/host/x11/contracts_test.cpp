// SPDX-License-Identifier: MIT
#include "tests/host/x11/x11_rig.h"
#include "tests/support/contracts/event_poster_contract.h"
#include "tests/support/contracts/event_source_contract.h"
#include "tests/support/contracts/workspace_contract.h"

namespace kelvora::contract {
namespace {

std::unique_ptr<DesktopRig> makeRig() {
    return std::make_unique<X11Rig>();
}

INSTANTIATE_TEST_SUITE_P(X11, EventPosterContract, testing::Values(RigFactory(makeRig)));
INSTANTIATE_TEST_SUITE_P(X11, EventSourceContract, testing::Values(RigFactory(makeRig)));
INSTANTIATE_TEST_SUITE_P(X11, WorkspaceContract, testing::Values(RigFactory(makeRig)));

} // namespace
} // namespace kelvora::contract
