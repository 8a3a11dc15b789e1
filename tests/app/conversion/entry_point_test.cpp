// SPDX-License-Identifier: MIT
#include "tests/app/conversion/path_test.h"

#include <algorithm>
#include <functional>

namespace kelvora {
namespace {

class EntryPointTest : public PathTest {
protected:
    ConversionOutcome convert() {
        return FocusedTextConverter::convertFocusedField(request, services());
    }
    void setTyped(std::u16string_view text) {
        request.typedText->replace(request.typedText->text(), text);
    }
    View& view() { return desktop.accessibility.views[fake::Windows::editor]; }
};

TEST_F(EntryPointTest, ChoosesThePathByApplicationAndElement) {
    constexpr auto ordinary = ApplicationKind::ordinary;
    constexpr auto noSelectAll = ApplicationKind::noSelectAll;
    const View textLine{};
    const View document{.role = TextRole::multiLine};
    const View label{.role = TextRole::notEditable};
    const View unknown{
        .role = TextRole::multiLine,
        .readErrors = {{accessibilityAttribute::selectedText, AccessibilityError::noValue}}};
    const View ignoring{.ignoresWrites = true};
    const View silent{.inner = {AccessibilityError::cannotComplete, {}}};
    const struct {
        const char* name;
        std::string bundleID;
        ApplicationKind kind;
        std::optional<View> view;
        std::u16string_view typed;
        std::u16string before;
        std::u16string_view keys;
        std::u16string after; // empty: as before
    } cases[] = {
        {"typed before selected", "a", ordinary, textLine, u"ghbdtn", u"[vbh] ghbdtn",
         u"<<<<<<привет", u"привет| ghbdtn"},
        {"a terminal", "org.alacritty", ordinary, {}, u"vbh", u"vbh|", u"<<<мир", u"мир|"},
        {"a selection", "a", ordinary, textLine, u"42", u"a [ghbdtn]", u"", u"a привет|"},
        {"none, in a line", "a", ordinary, textLine, u"", u"ghbdtn |vbh", u"CACV", u"привет мир|"},
        {"no element", "unknown", ordinary, {}, u"42", u"ghbdtn|", u"CACV", u"привет|"},
        {"a canvas", "com.figma.Desktop", ordinary, {}, u"", u"ghbdtn|", u"C", u""},
        {"compared with case", "com.figma.desktop", ordinary, {}, u"", u"vbh|", u"CACV", u"мир|"},
        {"a file manager", "a", noSelectAll, {}, u"", u"ghbdtn|", u"C", u""},
        {"text to read", "a", ordinary, label, u"", u"[ghbdtn]", u"", u""},
        {"no word in a document", "a", ordinary, document, u"", u"ok\n|vbh", u"", u""},
        {"nor a known selection", "a", ordinary, unknown, u"", u"vbh|", u"C", u""},
        {"a write without effect", "a", ordinary, ignoring, u"", u"[vbh]", u"CVsss", u"[мир]"},
        {"a look-up that hangs", "a", ordinary, silent, u"", u"vbh|", u"", u""},
    };
    for (const auto& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        request.bundleID = testCase.bundleID;
        request.applicationKind = testCase.kind;
        setTyped(testCase.typed);
        desktop.accessibility.views.clear();
        if (testCase.view)
            view() = *testCase.view;
        beginCase();
        show(testCase.before);
        EXPECT_EQ(convert(), testCase.after.empty() ? ConversionOutcome::noText()
                                                    : ConversionOutcome::converted(1));
        EXPECT_EQ(posted(), testCase.keys);
        EXPECT_EQ(shown(), testCase.after.empty() ? testCase.before : testCase.after);
        if (testCase.typed == u"42") {
            EXPECT_EQ(request.typedText->text(), u"") << "something else is before the caret";
        }
    }
}

TEST_F(EntryPointTest, NothingIsTouchedInTerminalsPasswordsAndWhatMayBeTheWrongText) {
    using Disturb = std::function<void()>;
    enum Element { without, with };
    const Disturb unknownFocus = [this] { keyboard.emplace(desktop.keyboard, FocusTarget{}); };
    const Disturb typedOver = [this] { request.textAtTrigger.emplace(u"4"); };
    const struct {
        const char* name;
        Element element;
        Disturb disturb;
        TextRole role = TextRole::singleLine;
    } cases[] = {
        {"focus that moved", with, [this] { keyboard->noteFocusChange(); }},
        {"focus that is not known", with, unknownFocus},
        {"the same without an element", without, unknownFocus},
        {"a keyboard that a locker has", without, [this] { desktop.windows.setGrabbed(true); }},
        {"an incomplete record", with, [this] { desktop.keyboard.canSettle = false; }},
        {"a key typed over the selection", with, typedOver},
        {"the same without an element", without, typedOver},
        {"a pasteboard not to be saved", without,
         [this] { desktop.pasteboard.isOwnerHanging = true; }},
        {"a user who types while it is saved", without,
         [this] { desktop.pasteboard.onSaving = [this] { desktop.strike(u'x'); }; }},
        {"no answer", without, [this] { desktop.probe.answerTime = 9; }},
        {"terminal by identifier", with, [this] { request.bundleID = "org.alacritty"; }},
        {"by kind", with, [this] { request.applicationKind = ApplicationKind::terminal; }},
        {"by role", with, [] {}, TextRole::terminal},
        {"password", with, [] {}, TextRole::password},
    };
    const auto isRead = [](const std::string& asked) {
        return asked == "read AXSelectedText" || asked == "read AXValue" || asked == "around caret";
    };
    const ConversionRequest fresh = request;
    for (const auto& [name, element, disturb, role] : cases) {
        SCOPED_TRACE(name);
        desktop.windows.setGrabbed(false);
        desktop.keyboard.canSettle = true;
        desktop.pasteboard.isOwnerHanging = false;
        desktop.pasteboard.onSaving = nullptr;
        desktop.probe.answerTime = 0;
        request.textAtTrigger = fresh.textAtTrigger;
        request.bundleID = fresh.bundleID;
        request.applicationKind = fresh.applicationKind;
        setTyped(u"42");
        desktop.accessibility.views.clear();
        if (element == with)
            view().role = role;
        beginCase();
        show(u"[ghbdtn]");
        disturb();
        const std::int64_t count = desktop.pasteboard.changeCount();
        EXPECT_EQ(convert(), ConversionOutcome::noText());
        EXPECT_EQ(posted(), u"");
        EXPECT_EQ(shown(), u"[ghbdtn]");
        EXPECT_EQ(desktop.pasteboard.changeCount(), count);
        EXPECT_EQ(request.typedText->text(), role == TextRole::password ? u"" : u"42");
        const bool mayBeRead = role == TextRole::singleLine && request.bundleID == fresh.bundleID &&
                               request.applicationKind == fresh.applicationKind;
        EXPECT_TRUE(mayBeRead || std::ranges::none_of(desktop.accessibility.requests, isRead));
    }
}

} // namespace
} // namespace kelvora
