// SPDX-License-Identifier: MIT
#include "app/shell/app_model.h"

#include "tests/support/fake_desktop/fake_desktop.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace kelvora {
namespace {

using Pair = std::pair<std::string, std::string>;

class AppModelTest : public testing::Test {
protected:
    Pair pair() const { return {model.firstSourceID(), model.secondSourceID()}; }

    void enable(const std::vector<const char*>& ids) {
        layouts.enabled.clear();
        for (const char* id : ids) {
            InputSource source = fake::usLayout();
            source.id = id;
            layouts.enabled.push_back(source);
        }
        model.refreshInputSources();
    }

    fake::Layouts layouts;
    fake::GrantedPermissions permissions;
    AppModel model{layouts, permissions};
};

TEST_F(AppModelTest, PairStaysValid) {
    enable({"A", "B", "C"});
    EXPECT_EQ(pair(), Pair("A", "B"));
    model.setFirstSourceID("B"); // the other side has it
    model.setSecondSourceID("A");
    model.setFirstSourceID("D"); // not enabled
    model.setSecondSourceID("");
    EXPECT_EQ(pair(), Pair("A", "B"));
    model.setFirstSourceID("C");
    model.setSecondSourceID("A");
    EXPECT_EQ(pair(), Pair("C", "A"));

    struct Step {
        const char* name;
        std::vector<const char*> enabled;
        Pair pair;
    };
    const Step steps[] = {
        {"the user's choice stands in another order", {"A", "C", "B"}, {"C", "A"}},
        {"one side removed: the whole pair is replaced", {"B", "A"}, {"B", "A"}},
        {"one layout left", {"A"}, {"", ""}},
        {"two again", {"C", "B", "A"}, {"C", "B"}},
        {"the same twice", {"D", "D"}, {"D", "D"}},
    };
    for (const Step& step : steps) {
        SCOPED_TRACE(step.name);
        enable(step.enabled);
        EXPECT_EQ(pair(), step.pair);
    }
}

TEST_F(AppModelTest, EveryAssignmentOfASettingCallsBack) {
    int calls = 0;
    model.onSettingsChanged = [&] { ++calls; };
    model.setIsEnabled(true);
    model.setSensitivity(0.5);
    model.setReselectPastedText(true);
    EXPECT_EQ(calls, 3);
    model.setFirstSourceID("ru");
    model.refreshInputSources();
    EXPECT_EQ(calls, 3);
}

} // namespace
} // namespace kelvora
