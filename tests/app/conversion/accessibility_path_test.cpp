// SPDX-License-Identifier: MIT
#include "tests/app/conversion/path_test.h"

namespace kelvora {
namespace {

using enum AccessibilityError;
constexpr std::uint64_t editor = fake::Windows::editor;
constexpr std::uint64_t otherEditor = fake::Windows::otherEditor;

TEST_F(PathTest, FocusedElementIsLookedUpTwiceThenInTheWholeSession) {
    const AccessibilityAttribute isLeaf{attributeUnsupported, {}};
    const struct {
        const char* name;
        std::int32_t process;
        double appearsAfter;
        AccessibilityAttribute inner;
        std::u16string_view found; // its text
        double elapsed;
    } cases[] = {
        {"at once", 101, 0, isLeaf, u"editor", 0},
        {"after a moment", 101, 0.05, isLeaf, u"editor", 0.05},
        {"too late", 101, 0.051, isLeaf, u"other", 0.05},
        {"no application", 0, 0, isLeaf, u"other", 0},
        {"nested", 101, 0, {success, desktop.accessibility.element(otherEditor)}, u"other", 0},
        {"inner not readable", 101, 0, {failure, {}}, u"editor", 0},
        {"inner no element", 101, 0, {success, std::u16string(u"text")}, u"editor", 0},
        {"inner absent", 101, 0, {success, {}}, u"editor", 0},
    };
    desktop.accessibility.views = {{editor, {}}, {otherEditor, {}}};
    desktop.windows.field(editor).set(u"editor");
    desktop.windows.field(otherEditor).set(u"other");
    desktop.windows.focus(otherEditor); // of the session; the application is asked all the same
    for (const auto& [name, process, appearsAfter, inner, found, elapsed] : cases) {
        SCOPED_TRACE(name);
        const double started = desktop.scheduler.now();
        desktop.accessibility.views[editor].visibleFrom = started + appearsAfter;
        desktop.accessibility.views[editor].inner = inner;
        beginCase();
        const auto element = FocusedTextConverter::focusedElement(process, services()).element;
        const auto requests = desktop.accessibility.requests;
        ASSERT_TRUE(element);
        EXPECT_EQ(element->copyAttributeValue(accessibilityAttribute::value).value,
                  AccessibilityValue(std::u16string(found)));
        EXPECT_NEAR(desktop.scheduler.now() - started, elapsed, 1e-9);
        EXPECT_EQ(requests.size() >= 2 && requests[0] == "enable 101 AXManualAccessibility" &&
                      requests[1] == "enable 101 AXEnhancedUserInterface",
                  process != 0);
    }
    desktop.accessibility.views.clear();
    EXPECT_EQ(FocusedTextConverter::focusedElement(101, services()).element, nullptr);
}

TEST_F(PathTest, SelectionOrWordOfADocumentIsReplacedInPlace) {
    const Outcome converted = ConversionOutcome::converted(1);
    const Outcome noText = ConversionOutcome::noText();
    const Outcome otherWay; // by the clipboard
    const auto failing = [](std::string_view attribute, AccessibilityError error) {
        return View{.readErrors = {{attribute, error}}};
    };
    const auto selection = accessibilityAttribute::selectedText;
    const auto value = accessibilityAttribute::value;
    View keepsSelected = failing(value, failure);
    keepsSelected.selectsWritten = true;
    const View ignores{.ignoresWrites = true};
    const View refuses{.writeError = attributeUnsupported};
    const View hangsAtWrite{.writeError = cannotComplete};
    const View document{.role = TextRole::multiLine};
    const View unreadable{.role = TextRole::multiLine, .hasReadableText = false};
    const View unwritable{.role = TextRole::multiLine, .replaceError = failure};
    const View hangs{.role = TextRole::multiLine, .replaceError = cannotComplete};
    const std::u16string page(3000, u' '), endless(1500, u'b');
    enum FocusMoves { stays, moves };
    const struct {
        const char* name;
        std::u16string before;
        View view;
        Outcome outcome;
        std::u16string after; // empty: as before
        FocusMoves focus = stays;
    } cases[] = {
        {"only the selection", u"vbh [ghbdtn] vbh", {}, converted, u"vbh привет| vbh"},
        {"still selected", u"[ghbdtn]", keepsSelected, converted, u"[привет]"},
        {"no selection", u"ghbdtn|", {}, otherWay, u""},
        {"not readable", u"[ghbdtn]", failing(selection, noValue), otherWay, u""},
        {"hangs at the read", u"[ghbdtn]", failing(selection, cannotComplete), noText, u""},
        {"selected digits", u"[2024]", {}, noText, u""},
        {"write refused", u"[ghbdtn]", refuses, otherWay, u""},
        {"hangs at the write", u"[ghbdtn]", hangsAtWrite, noText, u""},
        {"write ignored", u"[ghbdtn]", ignores, otherWay, u""},
        {"the same text elsewhere", u"привет [ghbdtn]", ignores, converted, u""},
        {"within a longer character", u"и\u0306 [b]", ignores, otherWay, u""},
        {"write taken, not shown", u"[ghbdtn]", failing(value, failure), otherWay, u"привет|"},
        {"focus elsewhere", u"[ghbdtn] vbh", {}, noText, u"", moves},
        {"end of a word", u"ok ghbdtn| vbh\n", document, converted, u"ok привет| vbh\n"},
        {"within a word", u"ok ghb|dtn vbh\n", document, converted, u"ok при|вет vbh\n"},
        {"spaces behind it", u"ghbdtn  |vbh", document, converted, u"привет  |vbh"},
        {"far in", page + u"vbh|" + page, document, converted, page + u"мир|" + page},
        {"all of it", u"ghbdtn|", document, converted, u"привет|"},
        {"a line break before", u"ghbdtn\n|vbh", document, noText, u""},
        {"digits", u"ghbdtn 2024|", document, noText, u""},
        {"may begin before the stretch", endless + u"| vbh", document, noText, u""},
        {"may end behind it", u"a|" + endless, document, noText, u""},
        {"with an image", u"ghb\uFFFCdtn|", document, noText, u""},
        {"unreadable", u"ghbdtn|", unreadable, noText, u""},
        {"not to be written", u"ghbdtn|", unwritable, noText, u""},
        {"hangs", u"ghbdtn|", hangs, noText, u""},
        {"focus elsewhere", u"ghbdtn| vbh", document, noText, u"", moves},
    };
    for (const auto& [name, before, view, outcome, after, focus] : cases) {
        SCOPED_TRACE(name);
        desktop.accessibility.views[editor] = view;
        beginCase();
        show(before);
        if (focus == moves)
            keyboard->noteFocusChange();
        const auto element = desktop.accessibility.element(editor);
        const auto result = FocusedTextConverter::tryAXPath(*element, request, services());
        EXPECT_EQ(result.outcome, outcome);
        EXPECT_EQ(result.hadSelection, before.find(u'[') != std::u16string::npos &&
                                           !view.readErrors.contains(selection));
        EXPECT_EQ(shown(), after.empty() ? before : after);
        EXPECT_EQ(posted(), u"");
    }
}

} // namespace
} // namespace kelvora
