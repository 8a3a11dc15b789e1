// SPDX-License-Identifier: MIT
#include "tests/app/running_app.h"

#include <vector>

namespace kelvora {
namespace {

/// A layout that is in the list has lost its table by the time of the mapping.
class LosesTable final : public InputSources {
public:
    explicit LosesTable(fake::Layouts& layouts) : layouts_(layouts) {}
    std::optional<std::vector<InputSource>> enabledSources() override {
        auto sources = layouts_.enabled;
        if (++calls_ > healthyCalls) {
            sources.back().keyLayoutData = nullptr;
        }
        return sources;
    }
    std::optional<InputSource> currentSource() override { return layouts_.currentSource(); }
    bool select(const InputSource& source) override { return layouts_.select(source); }
    std::uint32_t keyboardType() override { return 0; }

private:
    static constexpr int healthyCalls = 2; // of the model: at its start and at the trigger
    fake::Layouts& layouts_;
    int calls_ = 0;
};

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
    EXPECT_EQ(app->model().doubleTapCount, 1);
    EXPECT_EQ(app->model().shiftEventCount, 4);
    EXPECT_EQ(
        desktop.log.messages("Conversion", LogLevel::info),
        (std::vector<std::string>{
            "performConversion() invoked", "Trigger: bundleID=<private>, doubleShiftDetected=true",
            "Typed-word path success: bundleID=<private>, deleted=6, targetIndex=1",
            "Converted text to index 1 (<private>)"}));
    EXPECT_TRUE(errors().empty());
}

TEST_F(ConversionTest, TypingGoesOnAfterwards) {
    typeAndConvert(u"ghbdtn");
    desktop.type(u" vbh");
    EXPECT_EQ(text(), u"привет мир");
    EXPECT_EQ(recorded(), u"привет мир");
}

TEST_F(ConversionTest, SecondConversionPutsTheWordBack) {
    typeAndConvert(u"ok ghbdtn ");
    EXPECT_EQ(text(), u"ok привет ");
    typeAndConvert(u"");
    EXPECT_EQ(text(), u"ok ghbdtn ");
    EXPECT_EQ(desktop.layouts.activeID, "us");
    EXPECT_EQ(status(), success);
}

TEST_F(ConversionTest, TriggerDuringAConversionIsLoggedAndDropped) {
    desktop.type(u"ghbdtn");
    desktop.doubleShift();
    desktop.at(0.05, [this] {
        EXPECT_TRUE(app->conversionInProgress());
        app->hotkey().onTrigger();
    });
    desktop.run();
    EXPECT_EQ(app->model().doubleTapCount, 2);
    EXPECT_EQ(errors(), (std::vector<std::string>{"performConversion skipped: inProgress=true, "
                                                  "isEnabled=true, accessibility=true"}));
    EXPECT_EQ(text(), u"привет");
    EXPECT_EQ(status(), success);
    EXPECT_FALSE(app->conversionInProgress());
}

TEST_F(ConversionTest, DoubleShiftTappedMeanwhileWaitsForTheEnd) {
    desktop.type(u"ghbdtn");
    desktop.doubleShift();
    for (const double time : {0.02, 0.06}) {
        desktop.at(time, [this] { desktop.keyboard.press(keyCode::leftShift); });
        desktop.at(time + 0.02, [this] { desktop.keyboard.release(keyCode::leftShift); });
    }
    desktop.run();
    EXPECT_EQ(text(), u"ghbdtn") << "there and back";
    EXPECT_EQ(app->model().doubleTapCount, 2);
}

TEST_F(ConversionTest, RefusedWithoutAChangeOfTheStatus) {
    app->model().setIsEnabled(false);
    app->hotkey().onTrigger(); // one that was on its way when the switch was turned off
    desktop.run();
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

TEST_F(ConversionTest, LayoutsThatCannotBeUsed) {
    desktop.layouts.enabled = {fake::usLayout()};
    typeAndConvert(u"ghbdtn");
    EXPECT_EQ(status(), "Add two keyboard layouts in System Settings.");

    desktop.layouts.enabled = {fake::usLayout(), fake::russianLayout()};
    LosesTable losesTable(desktop.layouts);
    const Desktop all = desktop.services();
    app.reset();
    app = std::make_unique<AppDelegate>(Desktop{all.dispatch, all.log, all.eventSource,
                                                all.eventPoster, losesTable, all.keyTranslator,
                                                all.workspace, all.permissions});
    app->launch();
    typeAndConvert(u"ghbdtn");
    EXPECT_EQ(status(), "The selected keyboard layouts are unavailable.");
    EXPECT_EQ(errors(), (std::vector<std::string>{
                            "performConversion: missing keyboard layouts",
                            "performConversion: mapping unavailable for <private> and <private>"}));
    EXPECT_TRUE(desktop.keyboard.posted.empty());
    EXPECT_FALSE(app->conversionInProgress());
    app.reset();
}

TEST_F(ConversionTest, LayoutsChangedAMomentAgoAreUsed) {
    desktop.type(u"ghbdtn");
    desktop.layouts.enabled = {fake::usLayout(), fake::greekLayout()};
    desktop.doubleShift();
    desktop.run();
    EXPECT_EQ(text(), u"γηβδτν");
    EXPECT_EQ(desktop.layouts.activeID, "gr");
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

    // A layout removed midway cannot be selected either.
    desktop.layouts.refusesSelection = false;
    desktop.type(u" ghbdtn");
    desktop.doubleShift();
    desktop.at(0.05, [this] { desktop.layouts.enabled.pop_back(); });
    desktop.run();
    EXPECT_EQ(text(), u"привет привет");
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
        {"us", u"[", u"х", success}, // converts from the active layout
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

TEST_F(ConversionTest, NothingToConvert) {
    for (const std::u16string_view typed : {u"", u"2024"}) {
        typeAndConvert(typed);
        EXPECT_EQ(status(), nothing);
        EXPECT_EQ(desktop.layouts.activeID, "us");
        EXPECT_FALSE(app->conversionInProgress());
    }
    EXPECT_EQ(desktop.log.messages("Conversion", LogLevel::info).back(),
              "performConversion: no convertible text found");
}

TEST_F(ConversionTest, FocusChangeForgetsWhatWasTyped) {
    desktop.type(u"ghbdtn");
    desktop.windows.focus(fake::Windows::otherEditor);
    typeAndConvert(u"");
    EXPECT_EQ(status(), nothing);
    desktop.type(u"vbh");
    // A locker: what is typed into it is nobody's.
    desktop.windows.setGrabbed(true);
    desktop.type(u"secret");
    desktop.windows.setGrabbed(false);
    typeAndConvert(u"");
    EXPECT_EQ(desktop.windows.text(fake::Windows::otherEditor), u"vbh");
    EXPECT_EQ(status(), nothing);
}

TEST_F(ConversionTest, NoFrontmostApplicationIsAnUnknownOne) {
    desktop.windows.applications.clear();
    typeAndConvert(u"ghbdtn");
    EXPECT_EQ(text(), u"привет");
}

TEST_F(ConversionTest, TerminalsGetTypedTextOnly) {
    desktop.windows.applications[fake::Windows::editor].kind = ApplicationKind::terminal;
    typeAndConvert(u"ghbdtn");
    EXPECT_EQ(text(), u"привет");
    desktop.tap(keyCode::returnKey);
    typeAndConvert(u"");
    EXPECT_EQ(desktop.log.messages("Conversion", LogLevel::info).at(6),
              "Terminal: nothing typed since the caret moved. bundleID=<private>");
}

TEST_F(ConversionTest, ConversionMayOutliveTheDelegate) {
    desktop.type(u"ghbdtn");
    desktop.doubleShift();
    desktop.at(0.05, [this] { app.reset(); });
    desktop.run();
    EXPECT_EQ(text(), u"привет");
    desktop.windows.focus(fake::Windows::otherEditor);
    desktop.doubleShift();
    desktop.run();
    EXPECT_EQ(desktop.events.tapCount(), 0U);
}

TEST_F(ConversionTest, NothingTypedReachesTheLog) {
    typeAndConvert(u"ghbdtn");
    typeAndConvert(u" vbh");
    for (const auto& line : desktop.log.lines()) {
        for (const char* secret : {"ghbdtn", "привет", "vbh", "мир", "org.example", "us)", "ru)"}) {
            EXPECT_EQ(line.message.find(secret), std::string::npos) << line.message;
        }
    }
}

} // namespace
} // namespace kelvora
