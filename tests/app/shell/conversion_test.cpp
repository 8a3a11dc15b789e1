// SPDX-License-Identifier: MIT
#include "tests/app/running_app.h"

#include <tuple>
#include <vector>

namespace kelvora {
namespace {

using Strings = std::vector<std::string>;

class ConversionTest : public RunningApp {
protected:
    Strings messages(LogLevel level) const { return desktop.log.messages("Conversion", level); }
};

TEST_F(ConversionTest, WordIsRepairedAndTheLayoutSwitched) {
    typeAndConvert(u"ghbdtn");
    EXPECT_EQ(text(), u"привет");
    EXPECT_EQ(desktop.layouts.activeID, "ru");
    EXPECT_EQ(status(), success);
    EXPECT_EQ(app->model().doubleTapCount(), 1);
    EXPECT_EQ(app->model().shiftEventCount(), 4);
    EXPECT_EQ(messages(LogLevel::info),
              (Strings{"performConversion() invoked",
                       "Trigger: bundleID=<private>, doubleShiftDetected=true",
                       "Typed-word path success: bundleID=<private>, deleted=6, targetIndex=1",
                       "Converted text to index 1 (<private>)"}));
    EXPECT_EQ(messages(LogLevel::error), Strings());

    desktop.type(u" vbh");
    EXPECT_EQ(text(), u"привет мир");
    EXPECT_EQ(recorded(), u"привет мир");
    for (const auto& line : desktop.log.lines())
        for (const char* secret : {"ghbdtn", "привет", "vbh", "мир", "org.example", "us)", "ru)"})
            EXPECT_EQ(line.message.find(secret), std::string::npos) << line.message;
}

TEST_F(ConversionTest, TriggersAreRefusedMidwayAndWhereNothingIsAllowed) {
    desktop.type(u"ghbdtn");
    desktop.doubleShift();
    desktop.at(0.05, [this] {
        EXPECT_TRUE(app->conversionInProgress());
        app->hotkey().onTrigger();
    });
    desktop.run();
    EXPECT_EQ(app->model().doubleTapCount(), 2);
    EXPECT_EQ(text(), u"привет");
    EXPECT_EQ(status(), success);
    EXPECT_FALSE(app->conversionInProgress());

    launch();
    app->model().setIsEnabled(false);
    app->hotkey().onTrigger(); // one that was on its way when the switch was turned off
    desktop.run();
    desktop.defaults.values.clear();
    desktop.permissions.accessibility = false;
    launch();
    app->hotkey().onTrigger();
    desktop.run();
    EXPECT_EQ(app->model().statusMessage(), std::nullopt);
    const std::string skipped = "performConversion skipped: inProgress=";
    EXPECT_EQ(messages(LogLevel::error),
              (Strings{skipped + "true, isEnabled=true, accessibility=true",
                       skipped + "false, isEnabled=false, accessibility=true",
                       skipped + "false, isEnabled=true, accessibility=false"}));
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
    desktop.windows.applications.clear(); // none is frontmost either
    desktop.layouts.refusesSelection = true;
    typeAndConvert(u"ghbdtn");
    EXPECT_EQ(text(), u"привет");
    EXPECT_EQ(status(), "Text converted, but the selected input source could not be activated.");
}

TEST_F(ConversionTest, ActiveLayoutDecidesATie) {
    desktop.layouts.enabled.push_back(fake::greekLayout());
    // The Russian ? there is the US &; of a third layout's keys both directions would change it.
    for (const auto& [active, key, expected] :
         {std::tuple{"ru", u"&", u"&"}, {"us", u"&", u"?"}, {"gr", u"q", u";"}}) {
        desktop.windows.field().set(u"");
        desktop.layouts.activeID = active;
        desktop.windows.focus(fake::Windows::editor);
        typeAndConvert(key);
        EXPECT_EQ(text(), expected) << active << " active";
        EXPECT_EQ(status(), active == std::string("gr") ? nothing : success);
    }
}

TEST_F(ConversionTest, SelectionIsRepairedBeforeTheKeysTypedMeanwhile) {
    const struct {
        const char* name;
        std::optional<TextRole> role; // absent: no accessibility, so by the clipboard
        std::size_t anchor;           // the caret is at the end
        std::u16string_view text;
    } cases[] = {
        {"by accessibility", TextRole::singleLine, 3, u"ok приветй"},
        {"word of a document", TextRole::multiLine, 9, u"ok приветй"},
        {"whole field by the clipboard", std::nullopt, 9, u"щл приветй"},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        desktop.layouts.activeID = "us";
        desktop.accessibility.views.clear();
        if (testCase.role)
            desktop.accessibility.views[fake::Windows::editor].role = *testCase.role;
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
    Strings& requests = desktop.accessibility.requests;
    EXPECT_EQ(requests,
              (Strings{"enable 101 AXManualAccessibility", "enable 101 AXEnhancedUserInterface"}));
    requests.clear();
    desktop.windows.focus(fake::Windows::editor);
    desktop.run();
    EXPECT_EQ(requests, Strings());
    desktop.windows.focus(fake::Windows::otherEditor);
    desktop.run();
    EXPECT_EQ(requests,
              (Strings{"enable 102 AXManualAccessibility", "enable 102 AXEnhancedUserInterface"}));
}

TEST_F(ConversionTest, TheKindOfApplicationIsKnown) {
    desktop.windows.applications[fake::Windows::editor].kind = ApplicationKind::terminal;
    typeAndConvert(u"");
    EXPECT_EQ(messages(LogLevel::info).at(2),
              "Terminal: nothing typed since the caret moved. bundleID=<private>");
}

} // namespace
} // namespace kelvora
