// SPDX-License-Identifier: MIT
#include "app/shell/app_model.h"

#include "tests/support/fake_desktop/fake_desktop.h"

#include <gtest/gtest.h>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace kelvora {
namespace {

using Ids = std::vector<const char*>;
using Pair = std::pair<std::string, std::string>;
using Calls = std::vector<std::string>;
using Property = AppModelProperty;

class AppModelTest : public testing::Test {
protected:
    void enable(const Ids& ids) {
        desktop.layouts.enabled = {{true, "an input method", "types no keys", nullptr}};
        for (const char* id : ids) {
            desktop.layouts.enabled.push_back(fake::usLayout());
            desktop.layouts.enabled.back().id = id;
        }
    }
    void start() {
        model.emplace(desktop.services(), desktop.session());
        desktop.sessionCalls.clear();
        model->onSettingsChanged = [this] { ++callbacks; };
        observation = model->observe([this](Property property) { ++announced[property]; });
    }
    void expectPair(const Pair& pair, const Pair& stored) {
        EXPECT_EQ(Pair(model->firstSourceID(), model->secondSourceID()), pair);
        EXPECT_EQ(desktop.defaults.string("firstSourceID"), stored.first);
        EXPECT_EQ(desktop.defaults.string("secondSourceID"), stored.second);
    }

    fake::FakeDesktop desktop;
    std::optional<AppModel> model;
    AppModelObservation observation;
    int callbacks = 0;
    std::map<Property, int> announced;
};

TEST_F(AppModelTest, SettingsAreReadByTheirTypeAndStoredBeforeTheyAreCalledBack) {
    const struct {
        const char* name;
        std::optional<fake::Defaults::Value> stored; ///< under each of the three keys
        bool isEnabled;
        double sensitivity;
    } cases[] = {
        {"nothing", {}, true, 0.5},
        {"texts", std::string("0"), true, 0.5},
        {"false", false, false, 0},
        {"a number that is no Boolean", 0.37, true, 0.37},
        {"any finite number", -1e9, true, -1e9},
    };
    for (const auto& [name, stored, isEnabled, sensitivity] : cases) {
        SCOPED_TRACE(name);
        if (stored)
            for (const char* key : {"isEnabled", "sensitivity", "reselectPastedText"})
                desktop.defaults.values[key] = *stored;
        start();
        EXPECT_EQ(model->isEnabled(), isEnabled);
        EXPECT_EQ(model->reselectPastedText(), isEnabled);
        EXPECT_EQ(model->sensitivity(), sensitivity);
    }
    Calls seen;
    model->onSettingsChanged = [&] { seen.push_back(desktop.sessionCalls.back()); };
    model->setIsEnabled(false);
    model->setSensitivity(0.3);
    model->setReselectPastedText(false);
    EXPECT_EQ(seen, (Calls{"store isEnabled", "store sensitivity", "store reselectPastedText"}));
    EXPECT_EQ(announced, (std::map<Property, int>{{Property::isEnabled, 1},
                                                  {Property::sensitivity, 1},
                                                  {Property::reselectPastedText, 1}}));
    start(); // the next launch
    EXPECT_FALSE(model->isEnabled());
    EXPECT_FALSE(model->reselectPastedText());
    EXPECT_EQ(model->sensitivity(), 0.3);
}

TEST_F(AppModelTest, PairIsRepairedAndStored) {
    const struct {
        const char* name;
        Pair stored;
        Ids enabled;
        Pair pair, storedAfter;
    } cases[] = {
        {"first start", {"", ""}, {"A", "B", "C"}, {"A", "B"}, {"A", "B"}},
        {"the user's choice stands", {"C", "A"}, {"A", "B", "C"}, {"C", "A"}, {"C", "A"}},
        {"one removed: both are replaced", {"C", "D"}, {"A", "B", "C"}, {"A", "B"}, {"A", "B"}},
        {"the same twice", {"A", "A"}, {"A", "B", "C"}, {"A", "B"}, {"A", "B"}},
        {"one layout", {"C", "A"}, {"A"}, {"", ""}, {"C", "A"}},
        {"one layout twice", {"C", "A"}, {"A", "A"}, {"", ""}, {"C", "A"}},
        {"another behind it", {"", ""}, {"A", "A", "B"}, {"A", "B"}, {"A", "B"}},
        {"none", {"C", "A"}, {}, {"", ""}, {"C", "A"}},
    };
    for (const auto& [name, stored, enabled, pair, storedAfter] : cases) {
        SCOPED_TRACE(name);
        desktop.defaults.values["firstSourceID"] = stored.first;
        desktop.defaults.values["secondSourceID"] = stored.second;
        enable(enabled);
        start();
        expectPair(pair, storedAfter);
    }
    enable({"C", "B", "A"}); // a second layout again, after none
    model->refreshInputSources();
    expectPair({"C", "B"}, {"C", "B"});

    model->setFirstSourceID("B"); // the other side has it
    model->setSecondSourceID("C");
    model->setFirstSourceID("D"); // not enabled
    model->setSecondSourceID("");
    expectPair({"C", "B"}, {"C", "B"});
    model->setFirstSourceID("A");
    model->setSecondSourceID("C");
    expectPair({"A", "C"}, {"A", "C"});
    EXPECT_EQ(callbacks, 0);
}

TEST_F(AppModelTest, APollSeesWhatChangedOutside) {
    desktop.permissions.inputMonitoring = false;
    start();
    desktop.runFor(AppModel::refreshInterval + 0.1);
    EXPECT_EQ(callbacks, 0);
    EXPECT_EQ(announced[Property::inputSources], 0);
    EXPECT_EQ(announced[Property::accessibilityGranted], 1) << "unchanged ones are announced too";

    for (bool* const flag : {&desktop.permissions.inputMonitoring,
                             &desktop.permissions.accessibility, &desktop.login.enabled}) {
        callbacks = 0;
        *flag = !*flag;
        desktop.runFor(2 * AppModel::refreshInterval);
        EXPECT_EQ(callbacks, 1);
        EXPECT_EQ(model->inputMonitoringGranted(), desktop.permissions.inputMonitoring);
        EXPECT_EQ(model->accessibilityGranted(), desktop.permissions.accessibility);
        EXPECT_EQ(model->launchAtLogin(), desktop.login.enabled);
    }
    enable({"A"});
    desktop.runFor(AppModel::refreshInterval);
    EXPECT_EQ(announced[Property::inputSources], 1);
    EXPECT_EQ(model->firstSourceID(), "");

    desktop.at(AppModel::refreshInterval, [this] { model.reset(); }); // with a tick on its way
    desktop.runFor(3 * AppModel::refreshInterval);
}

TEST_F(AppModelTest, ObserversMayComeGoAndAssignWhileTheyAreCalled) {
    start();
    std::string order;
    AppModelObservation first;
    AppModelObservation second;
    AppModelObservation third;
    first = model->observe([&](Property property) {
        order += '1';
        second.reset();
        first.reset();
        third = model->observe([&](Property) { order += '3'; });
        if (property == Property::isEnabled)
            model->setIsEnabled(false);
    });
    second = model->observe([&](Property) { order += '2'; });
    model->setIsEnabled(true);
    EXPECT_EQ(order, "13") << "the third hears of the assignment that came after it";
    EXPECT_FALSE(model->isEnabled());
    EXPECT_EQ(desktop.defaults.boolean("isEnabled"), false) << "what is stored is what holds";
    model.reset();
    third.reset();
}

} // namespace
} // namespace kelvora
