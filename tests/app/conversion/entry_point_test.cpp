// SPDX-License-Identifier: MIT
#include "tests/app/conversion/path_test.h"

#include <algorithm>
#include <functional>

namespace kelvora {
namespace {

constexpr const char* terminalLine =
    "Terminal: nothing typed since the caret moved. bundleID=<private>";

class EntryPointTest : public PathTest {
protected:
    ConversionOutcome convert() {
        return FocusedTextConverter::convertFocusedField(request, services());
    }
    bool isLogged(LogLevel level, std::string_view message) const {
        return std::ranges::count(logged(level), message) == 1;
    }
    int readCount() const {
        return static_cast<int>(
            std::ranges::count_if(desktop.accessibility.requests, [](const std::string& asked) {
                return asked == "read AXSelectedText" || asked == "read AXValue" ||
                       asked == "around caret";
            }));
    }
};

TEST_F(EntryPointTest, ChoosesThePathByApplicationAndElement) {
    constexpr auto ordinary = ApplicationKind::ordinary;
    constexpr auto noSelectAll = ApplicationKind::noSelectAll;
    const View textLine{};
    const View document{.role = TextRole::multiLine};
    const View unreadable{.role = TextRole::multiLine, .hasReadableText = false};
    const View unwritable{.role = TextRole::multiLine, .replaceError = AccessibilityError::failure};
    const View label{.role = TextRole::notEditable};
    const View unknown{
        .role = TextRole::multiLine,
        .readErrors = {{accessibilityAttribute::selectedText, AccessibilityError::noValue}}};
    const View ignoring{.ignoresWrites = true};
    const View silent{.inner = {AccessibilityError::cannotComplete, {}}};
    const View hanging{
        .readErrors = {{accessibilityAttribute::selectedText, AccessibilityError::cannotComplete}}};
    struct Case {
        const char* name;
        std::string bundleID;
        ApplicationKind kind;
        std::optional<View> view;
        std::u16string_view typed;
        std::u16string before;
        std::u16string_view keys;
        std::u16string after;
    };
    const Case cases[] = {
        {"what was typed before what is selected", "a", ordinary, textLine, u"ghbdtn",
         u"[vbh] ghbdtn", u"<<<<<<привет", u"привет| ghbdtn"},
        {"a word in a terminal",
         "org.alacritty",
         ordinary,
         {},
         u"ghbdtn",
         u"ghbdtn|",
         u"<<<<<<привет",
         u"привет|"},
        {"a selection", "a", ordinary, textLine, u"42", u"a [ghbdtn]", u"", u"a привет|"},
        {"one that does not convert", "a", ordinary, textLine, u"", u"a [42]", u"", u"a [42]"},
        {"none, in a line", "a", ordinary, textLine, u"", u"ghbdtn |vbh", u"CACV", u"привет мир|"},
        {"no element", "unknown", ordinary, {}, u"42", u"ghbdtn|", u"CACV", u"привет|"},
        {"a canvas", "com.figma.Desktop", ordinary, {}, u"", u"ghbdtn|", u"C", u"ghbdtn|"},
        {"compared with case", "com.figma.desktop", ordinary, {}, u"", u"vbh|", u"CACV", u"мир|"},
        {"a file manager", "a", noSelectAll, {}, u"", u"ghbdtn|", u"C", u"ghbdtn|"},
        {"a selection there", "a", noSelectAll, {}, u"", u"[vbh]", u"CVsss", u"[мир]"},
        {"text to read", "a", ordinary, label, u"", u"[ghbdtn]", u"", u"[ghbdtn]"},
        {"a document", "a", ordinary, document, u"", u"ok ghb|dtn vbh", u"", u"ok при|вет vbh"},
        {"no word there", "a", ordinary, document, u"", u"ok\n|vbh", u"", u"ok\n|vbh"},
        {"one that cannot be read", "a", ordinary, unreadable, u"", u"vbh|", u"", u"vbh|"},
        {"or not be written", "a", ordinary, unwritable, u"", u"vbh|", u"", u"vbh|"},
        {"nor its selection", "a", ordinary, unknown, u"", u"vbh|", u"C", u"vbh|"},
        {"a write without effect", "a", ordinary, ignoring, u"", u"[vbh]", u"CVsss", u"[мир]"},
        {"a look-up that hangs", "a", ordinary, silent, u"", u"vbh|", u"", u"vbh|"},
        {"an application that hangs", "a", ordinary, hanging, u"", u"vbh|", u"", u"vbh|"},
    };
    for (const Case& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        request.bundleID = testCase.bundleID;
        request.applicationKind = testCase.kind;
        request.typedText->replace(request.typedText->text(), testCase.typed);
        desktop.accessibility.views.clear();
        if (testCase.view) {
            desktop.accessibility.views[fake::Windows::editor] = *testCase.view;
        }
        beginCase();
        show(testCase.before);
        const bool converts = testCase.before.size() != testCase.after.size() ||
                              testCase.after.find(u"м") != std::u16string::npos ||
                              testCase.after.find(u"п") != std::u16string::npos;
        EXPECT_EQ(convert(),
                  converts ? ConversionOutcome::converted(1) : ConversionOutcome::noText());
        EXPECT_EQ(posted(), testCase.keys);
        EXPECT_EQ(shown(), testCase.after);
        EXPECT_TRUE(isLogged(LogLevel::info, "Trigger: bundleID=<private>, "
                                             "doubleShiftDetected=true"));
        EXPECT_EQ(isLogged(LogLevel::debug, "AX path: no focused AX element found for <private>. "
                                            "Using clipboard fallback."),
                  !testCase.view && testCase.bundleID != "org.alacritty");
        if (converts && testCase.typed == u"42") {
            EXPECT_EQ(request.typedText->text(), u"") << "something else is before the caret";
        }
    }
}

TEST_F(EntryPointTest, TerminalsAndPasswordsAreLeftAlone) {
    struct Case {
        const char* name;
        std::string bundleID;
        ApplicationKind kind;
        TextRole role;
        bool isTerminal, looksAtElement;
    };
    constexpr auto ordinary = ApplicationKind::ordinary;
    const Case cases[] = {
        {"by identifier", "org.alacritty", ordinary, TextRole::unknown, true, false},
        {"by kind", "unknown", ApplicationKind::terminal, TextRole::unknown, true, false},
        {"by role", "a", ordinary, TextRole::terminal, true, true},
        {"password", "a", ordinary, TextRole::password, false, true},
    };
    for (const Case& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        request.bundleID = testCase.bundleID;
        request.applicationKind = testCase.kind;
        request.typedText->replace(request.typedText->text(), u"42");
        desktop.accessibility.views[fake::Windows::editor].role = testCase.role;
        beginCase();
        show(u"[ghbdtn]");
        const std::int64_t count = desktop.pasteboard.changeCount();
        EXPECT_EQ(convert(), ConversionOutcome::noText());
        EXPECT_EQ(posted(), u"");
        EXPECT_EQ(readCount(), 0);
        EXPECT_EQ(!desktop.accessibility.requests.empty(), testCase.looksAtElement);
        EXPECT_EQ(desktop.pasteboard.changeCount(), count);
        EXPECT_EQ(isLogged(LogLevel::info, terminalLine), testCase.isTerminal);
        EXPECT_EQ(request.typedText->text(), testCase.isTerminal ? u"42" : u"");
    }
}

TEST_F(EntryPointTest, NothingIsTouchedWhereItMayBeTheWrongText) {
    struct Case {
        const char* name;
        bool hasElement;
        std::function<void()> disturb;
    };
    const Case cases[] = {
        {"focus that moved", true, [this] { keyboard->noteFocusChange(); }},
        {"focus that is not known", true,
         [this] { keyboard.emplace(desktop.keyboard, FocusTarget{}); }},
        {"the same without an element", false,
         [this] { keyboard.emplace(desktop.keyboard, FocusTarget{}); }},
        {"a keyboard that a locker has", false, [this] { desktop.windows.setGrabbed(true); }},
        {"a record that may be incomplete", true, [this] { desktop.keyboard.canSettle = false; }},
        {"a key typed over the selection", true, [this] { request.textAtTrigger = u"4"; }},
        {"the same without an element", false, [this] { request.textAtTrigger = u"4"; }},
        {"a pasteboard that cannot be saved", false,
         [this] { desktop.pasteboard.isOwnerHanging = true; }},
        {"a user who types while the pasteboard is saved", false,
         [this] { desktop.pasteboard.onSaving = [this] { desktop.strike(u'x'); }; }},
        {"an application that does not answer", false, [this] { desktop.probe.answerTime = 9; }},
    };
    for (const Case& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        desktop.windows.setGrabbed(false);
        desktop.keyboard.canSettle = true;
        desktop.pasteboard.isOwnerHanging = false;
        desktop.pasteboard.onSaving = nullptr;
        request.textAtTrigger = std::nullopt;
        request.typedText->replace(request.typedText->text(), u"42");
        desktop.accessibility.views.clear();
        if (testCase.hasElement) {
            desktop.accessibility.views[fake::Windows::editor] = {};
        }
        beginCase();
        show(u"[ghbdtn]");
        testCase.disturb();
        const std::int64_t count = desktop.pasteboard.changeCount();
        EXPECT_EQ(convert(), ConversionOutcome::noText());
        EXPECT_EQ(posted(), u"");
        EXPECT_EQ(shown(), u"[ghbdtn]");
        EXPECT_EQ(desktop.pasteboard.changeCount(), count);
        EXPECT_EQ(request.typedText->text(), u"42");
    }
}

} // namespace
} // namespace kelvora
