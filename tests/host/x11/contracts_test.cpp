// SPDX-License-Identifier: MIT
#include "tests/host/x11/x11_rig.h"
#include "tests/support/contracts/event_poster_contract.h"
#include "tests/support/contracts/event_source_contract.h"
#include "tests/support/contracts/workspace_contract.h"

namespace kelvora::contract {
namespace {

const RigFactory rig{"X11", [] { return std::make_unique<X11Rig>(); }};

INSTANTIATE_TEST_SUITE_P(Each, EventPosterContract, testing::Values(rig), factoryName);
INSTANTIATE_TEST_SUITE_P(Each, EventSourceContract, testing::Values(rig), factoryName);
INSTANTIATE_TEST_SUITE_P(Each, WorkspaceContract, testing::Values(rig), factoryName);

} // namespace
} // namespace kelvora::contract
