// SPDX-License-Identifier: MIT
#include "app/shell/app_model.h"

#include "tests/support/fake_desktop/fake_desktop.h"

#include <gtest/gtest.h>

#include <limits>
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
        desktop.layouts.enabled.clear();
        for (const char* id : ids) {
            InputSource source = fake::usLayout();
            source.id = id;
            desktop.layouts.enabled.push_back(source);
        }
    }
    Pair stored() {
        return {desktop.defaults.string("firstSourceID").value_or(""),
                desktop.defaults.string("secondSourceID").value_or("")};
    }
    void start() {
        model.emplace(desktop.services(), desktop.session());
        desktop.sessionCalls.clear();
        model->onSettingsChanged = [this] { ++callbacks; };
        observation = model->observe([this](Property property) { ++announced[property]; });
    }
    Pair pair() const { return {model->firstSourceID(), model->secondSourceID()}; }

    fake::FakeDesktop desktop;
    std::optional<AppModel> model;
    AppModelObservation observation;
    int callbacks = 0;
    std::map<Property, int> announced;
};

TEST_F(AppModelTest, StoredSettingsAreReadByTheirType) {
    using Value = fake::Defaults::Value;
    const struct {
        const char* name;
        std::optional<Value> stored; ///< under each of the three keys
        bool isEnabled;
        double sensitivity;
    } cases[] = {
        {"nothing", std::nullopt, true, 0.5},
        {"texts", Value(std::string("0")), true, 0.5},
        {"false", Value(false), false, 0},
        {"a number that is no Boolean", Value(0.37), true, 0.37},
        {"any finite number", Value(-1e9), true, -1e9},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        for (const char* key : {"isEnabled", "sensitivity", "reselectPastedText"}) {
            desktop.defaults.values.erase(key);
            if (testCase.stored) {
                desktop.defaults.values[key] = *testCase.stored;
            }
        }
        start();
        EXPECT_EQ(model->isEnabled(), testCase.isEnabled);
        EXPECT_EQ(model->reselectPastedText(), testCase.isEnabled);
        EXPECT_EQ(model->sensitivity(), testCase.sensitivity);
    }
    EXPECT_EQ(std::get<double>(desktop.defaults.values["sensitivity"]), -1e9) << "reading writes";
}

TEST_F(AppModelTest, EveryAssignmentOfASettingIsStoredAnnouncedAndCalledBack) {
    start();
    int seen = 0;
    model->onSettingsChanged = [&] { seen += static_cast<int>(desktop.sessionCalls.size()); };
    for (int round = 0; round < 2; ++round) { // the second time nothing is new
        model->setIsEnabled(false);
        model->setSensitivity(0.3);
        model->setReselectPastedText(false);
    }
    const Calls once{"store isEnabled", "store sensitivity", "store reselectPastedText"};
    Calls twice = once;
    twice.insert(twice.end(), once.begin(), once.end());
    EXPECT_EQ(desktop.sessionCalls, twice);
    EXPECT_EQ(seen, 1 + 2 + 3 + 4 + 5 + 6) << "each was stored before it was called back";
    EXPECT_EQ(announced, (std::map<Property, int>{{Property::isEnabled, 2},
                                                  {Property::sensitivity, 2},
                                                  {Property::reselectPastedText, 2}}));
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
        {"none", {"C", "A"}, {}, {"", ""}, {"C", "A"}},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        desktop.defaults.values["firstSourceID"] = testCase.stored.first;
        desktop.defaults.values["secondSourceID"] = testCase.stored.second;
        enable(testCase.enabled);
        start();
        EXPECT_EQ(pair(), testCase.pair);
        EXPECT_EQ(stored(), testCase.storedAfter);
    }
    enable({"C", "B", "A"}); // a second layout again, after none
    model->refreshInputSources();
    EXPECT_EQ(pair(), Pair("C", "B"));
    EXPECT_EQ(stored(), Pair("C", "B"));
    EXPECT_EQ(callbacks, 0);
}

TEST_F(AppModelTest, OnlyTwoDifferentEnabledLayoutsCanBeChosen) {
    enable({"A", "B", "C"});
    start();
    model->setFirstSourceID("B"); // the other side has it
    model->setSecondSourceID("A");
    model->setFirstSourceID("D"); // not enabled
    model->setSecondSourceID("");
    EXPECT_EQ(pair(), Pair("A", "B"));
    EXPECT_EQ(desktop.sessionCalls, Calls());
    model->setFirstSourceID("C");
    model->setSecondSourceID("A");
    EXPECT_EQ(pair(), Pair("C", "A"));
    EXPECT_EQ(stored(), Pair("C", "A"));
    EXPECT_EQ(callbacks, 0);
}

TEST_F(AppModelTest, APollSeesWhatChangedOutside) {
    desktop.permissions.inputMonitoring = false;
    start();
    desktop.runFor(AppModel::refreshInterval + 0.1);
    EXPECT_EQ(callbacks, 0);
    EXPECT_EQ(announced[Property::inputSources], 0);
    EXPECT_EQ(announced[Property::accessibilityGranted], 1) << "unchanged ones are announced too";

    bool& inputMonitoring = desktop.permissions.inputMonitoring;
    bool& accessibility = desktop.permissions.accessibility;
    const struct {
        const char* name;
        std::vector<bool*> toggled;
    } cases[] = {
        {"input monitoring granted", {&inputMonitoring}},
        {"accessibility revoked", {&accessibility}},
        {"login item added", {&desktop.login.enabled}},
        {"all at once", {&inputMonitoring, &accessibility, &desktop.login.enabled}},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        callbacks = 0;
        for (bool* flag : testCase.toggled) {
            *flag = !*flag;
        }
        model->onSettingsChanged = [this] {
            ++callbacks;
            EXPECT_EQ(model->inputMonitoringGranted(), desktop.permissions.inputMonitoring);
            EXPECT_EQ(model->accessibilityGranted(), desktop.permissions.accessibility);
            EXPECT_EQ(model->launchAtLogin(), desktop.login.enabled);
        };
        desktop.runFor(2 * AppModel::refreshInterval);
        EXPECT_EQ(callbacks, 1);
    }
    enable({"A"});
    desktop.runFor(AppModel::refreshInterval);
    EXPECT_EQ(announced[Property::inputSources], 1);
    EXPECT_EQ(pair(), Pair());

    desktop.at(AppModel::refreshInterval, [this] { model.reset(); }); // with a tick on its way
    desktop.runFor(3 * AppModel::refreshInterval);
}

TEST_F(AppModelTest, LoginItemShowsTheRealState) {
    start();
    const struct {
        const char* name;
        bool wanted;
        std::optional<std::string> refusal;
        bool isEnabled;
        std::optional<std::string> message;
    } cases[] = {
        {"refused", true, "Read-only.", false, "Launch at Login could not be changed: Read-only."},
        {"registered: the message goes", true, std::nullopt, true, std::nullopt},
        {"not removed", false, "", true, "Launch at Login could not be changed: "},
        {"removed", false, std::nullopt, false, std::nullopt},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        desktop.login.refusal = testCase.refusal;
        model->setLaunchAtLogin(testCase.wanted);
        EXPECT_EQ(model->launchAtLogin(), testCase.isEnabled);
        EXPECT_EQ(model->statusMessage(), testCase.message);
    }
    EXPECT_EQ(announced[Property::statusMessage], 4);
    EXPECT_EQ(callbacks, 0);
}

TEST_F(AppModelTest, RequestsPromptThenOpenThePageThenLookAgain) {
    const std::string prefix = "x-apple.systempreferences:com.apple.preference.security?";
    desktop.permissions.accessibility = desktop.permissions.inputMonitoring = false;
    start();
    desktop.permissions.accessibility = desktop.permissions.inputMonitoring = true;
    model->requestPermission(PermissionTarget::accessibility);
    EXPECT_EQ(callbacks, 1);
    EXPECT_TRUE(model->accessibilityGranted());
    model->requestPermission(PermissionTarget::inputMonitoring);
    EXPECT_EQ(desktop.sessionCalls,
              (Calls{"prompt accessibility", "open " + prefix + "Privacy_Accessibility",
                     "prompt listening", "open " + prefix + "Privacy_ListenEvent"}));

    for (const char* anchor :
         {"two words", "\"", "Privacy\n", "%", "%4", "%zz", "ä", "a#b#c", "[", "a\\b", "\x7F"}) {
        desktop.sessionCalls.clear();
        model->openPrivacyPane(anchor);
        EXPECT_EQ(desktop.sessionCalls, Calls()) << anchor;
    }
    for (const char* anchor : {"", "a%20b", "a/b?c=d&e", "a#b", "~!$'()*+,;:@-._"}) {
        desktop.sessionCalls.clear();
        model->openPrivacyPane(anchor);
        EXPECT_EQ(desktop.sessionCalls, Calls{"open " + prefix + anchor});
    }
}

TEST(PermissionTarget, IsMadeFromItsExactTextOnly) {
    EXPECT_EQ(PermissionTarget::allCases.front(), PermissionTarget::inputMonitoring);
    EXPECT_EQ(PermissionTarget::fromRawValue("Accessibility"), PermissionTarget::accessibility);
    EXPECT_EQ(PermissionTarget::fromRawValue("Input Monitoring"),
              PermissionTarget::inputMonitoring);
    for (const char* text : {"accessibility", "Accessibility ", "", "Privacy_Accessibility"}) {
        EXPECT_EQ(PermissionTarget::fromRawValue(text), std::nullopt) << text;
    }
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
        if (property == Property::isEnabled) {
            model->setIsEnabled(false);
        }
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
