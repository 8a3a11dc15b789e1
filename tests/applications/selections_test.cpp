// SPDX-License-Identifier: MIT
// Selections, words at the caret and whole fields, in windows of each toolkit.
#include "tests/applications/catalogue.h"
#include "tests/applications/session.h"

#include <gmock/gmock.h>
#include <ostream>
#include <string>

namespace kelvora::applications {

void PrintTo(const ApplicationDescription& description, std::ostream* stream) {
    *stream << description.name;
}

namespace {

class Selections : public testing::TestWithParam<ApplicationDescription> {};

TEST_P(Selections, AreConverted) {
    for (const Observation& seen : observe(KELVORA_PROGRAM, GetParam())) {
        EXPECT_THAT(seen.problems, testing::IsEmpty())
            << seen.application << ", " << seen.field << ", " << seen.scenario
            << ", way: " << seen.path;
    }
}

INSTANTIATE_TEST_SUITE_P(FieldWindows, Selections,
                         testing::ValuesIn(fieldWindows(KELVORA_FIELD_WINDOWS)),
                         [](const auto& window) {
                             std::string name = window.param.name;
                             std::erase(name, ' ');
                             return name;
                         });

} // namespace

} // namespace kelvora::applications
