// SPDX-License-Identifier: MIT
#include "tests/app/running_app.h"

#include <vector>

namespace kelvora {
namespace {

class ConversionTest : public RunningApp {
protected:
    std::vector<std::string> errors() const {
        return desktop.log.messages("Conversion", LogLevel::error);
    }
};

TEST_F(ConversionTest, WordIsRepairedAndTheLayoutSwitched) {
    typeAndConvert(u"ghbdtn");
    EXPECT_EQ(text(), u"привет");
    EXPECT_EQ(desktop.layouts.activeID, "ru");
    EXPECT_EQ(status(), success);
    EXPECT_EQ(app->model().doubleTapCount(), 1);
    EXPECT_EQ(app->model().shiftEventCount(), 4);
    EXPECT_EQ(
        desktop.log.messages("Conversion", LogLevel::info),
        (std::vector<std::string>{
            "performConversion() invoked", "Trigger: bundleID=<private>, doubleShiftDetected=true",
            "Typed-word path success: bundleID=<private>, deleted=6, targetIndex=1",
            "Converted text to index 1 (<private>)"}));
    EXPECT_TRUE(errors().empty());

    desktop.type(u" vbh");
    EXPECT_EQ(text(), u"привет мир");
    EXPECT_EQ(recorded(), u"привет мир");
    for (const auto& line : desktop.log.lines()) {
        for (const char* secret : {"ghbdtn", "привет", "vbh", "мир", "org.example", "us)", "ru)"}) {
            EXPECT_EQ(line.message.find(secret), std::string::npos) << line.message;
        }
    }
}

TEST_F(ConversionTest, TriggerDuringAConversionIsLoggedAndDropped) {
    desktop.type(u"ghbdtn");
    desktop.doubleShift();
    desktop.at(0.05, [this] {
        EXPECT_TRUE(app->conversionInProgress());
        app->hotkey().onTrigger();
    });
    desktop.run();
    EXPECT_EQ(app->model().doubleTapCount(), 2);
    EXPECT_EQ(errors(), (std::vector<std::string>{"performConversion skipped: inProgress=true, "
                                                  "isEnabled=true, accessibility=true"}));
    EXPECT_EQ(text(), u"привет");
    EXPECT_EQ(status(), success);
    EXPECT_FALSE(app->conversionInProgress());
}

TEST_F(ConversionTest, RefusedWithoutAChangeOfTheStatus) {
    app->model().setIsEnabled(false);
    app->hotkey().onTrigger(); // one that was on its way when the switch was turned off
    desktop.run();
    desktop.defaults.values.clear();
    desktop.permissions.accessibility = false;
    launch();
    app->hotkey().onTrigger();
    desktop.run();
    EXPECT_EQ(errors(), (std::vector<std::string>{
                            "performConversion skipped: inProgress=false, isEnabled=false, "
                            "accessibility=true",
                            "performConversion skipped: inProgress=false, isEnabled=true, "
                            "accessibility=false"}));
    EXPECT_EQ(app->model().statusMessage(), std::nullopt);
}

TEST_F(ConversionTest, IdentifiersOfTheTriggerAreUsedAtTheEnd) {
    desktop.layouts.enabled.push_back(fake::greekLayout());
    desktop.type(u"ghbdtn");
    desktop.doubleShift();
    desktop.at(0.05, [this] {
        app->model().refreshInputSources();
        app->model().setSecondSourceID("gr");
    });
    desktop.run();
    EXPECT_EQ(desktop.layouts.activeID, "ru");
}

TEST_F(ConversionTest, RefusedSelectionKeepsTheText) {
    desktop.layouts.refusesSelection = true;
    typeAndConvert(u"ghbdtn");
    EXPECT_EQ(text(), u"привет");
    EXPECT_EQ(status(), "Text converted, but the selected input source could not be activated.");
}

TEST_F(ConversionTest, ActiveLayoutDecidesATie) {
    struct Case {
        const char* active;
        std::u16string_view keys;
        std::u16string_view text;
        const char* status;
    };
    const Case cases[] = {
        {"ru", u"&", u"&", success}, // the Russian ? there is the US &
        {"us", u"&", u"?", success},
        {"gr", u"q", u";", nothing}, // a third layout: both directions would change it
    };
    desktop.layouts.enabled.push_back(fake::greekLayout());
    for (const Case& testCase : cases) {
        SCOPED_TRACE(testing::Message() << testCase.active << " active");
        desktop.windows.focus(desktop.windows.focusTarget().id + 1);
        desktop.layouts.activeID = testCase.active;
        typeAndConvert(testCase.keys);
        EXPECT_EQ(desktop.windows.text(desktop.windows.focusTarget().id), testCase.text);
        EXPECT_EQ(status(), testCase.status);
    }
}

TEST_F(ConversionTest, NoFrontmostApplicationIsAnUnknownOne) {
    desktop.windows.applications.clear();
    typeAndConvert(u"ghbdtn");
    EXPECT_EQ(text(), u"привет");
}

TEST_F(ConversionTest, SelectionIsRepairedBeforeTheKeysTypedMeanwhile) {
    struct Case {
        const char* name;
        std::optional<TextRole> role; // absent: no accessibility, so by the clipboard
        std::size_t anchor;           // the caret is at the end
        std::u16string_view text;
    };
    const Case cases[] = {
        {"by accessibility", TextRole::singleLine, 3, u"ok приветй"},
        {"word of a document", TextRole::multiLine, 9, u"ok приветй"},
        {"whole field by the clipboard", std::nullopt, 9, u"щл приветй"},
    };
    for (const Case& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        desktop.layouts.activeID = "us";
        if (testCase.role) {
            desktop.accessibility.views[fake::Windows::editor].role = *testCase.role;
        } else {
            desktop.accessibility.views.clear();
        }
        desktop.windows.field().set(u"ok ghbdtn");
        desktop.windows.field().select(testCase.anchor, 9);
        desktop.doubleShift();
        desktop.at(0.0045, [this] { desktop.strike(u'q'); });
        desktop.run();
        EXPECT_EQ(text(), testCase.text);
        EXPECT_EQ(recorded(), u"й");
        EXPECT_EQ(desktop.layouts.activeID, "ru");
        EXPECT_EQ(status(), success);
        EXPECT_FALSE(desktop.keyboard.isHeldBack());
        desktop.windows.focus(fake::Windows::otherEditor);
        desktop.windows.focus(fake::Windows::editor);
        desktop.run();
    }
}

TEST_F(ConversionTest, ApplicationsAreAskedForTheirTreesInAdvance) {
    const auto asked = [](int process) {
        return std::vector<std::string>{
            "enable " + std::to_string(process) + " AXManualAccessibility",
            "enable " + std::to_string(process) + " AXEnhancedUserInterface"};
    };
    std::vector<std::string>& requests = desktop.accessibility.requests;
    EXPECT_EQ(requests, asked(101));
    for (const std::uint64_t window : {fake::Windows::editor, fake::Windows::otherEditor}) {
        requests.clear();
        desktop.windows.focus(window);
        desktop.run();
        EXPECT_EQ(requests,
                  window == fake::Windows::editor ? std::vector<std::string>() : asked(102));
    }
}

TEST_F(ConversionTest, TheKindOfApplicationIsKnown) {
    desktop.windows.applications[fake::Windows::editor].kind = ApplicationKind::terminal;
    typeAndConvert(u"");
    EXPECT_EQ(desktop.log.messages("Conversion", LogLevel::info).at(2),
              "Terminal: nothing typed since the caret moved. bundleID=<private>");
}

} // namespace
} // namespace kelvora
