// SPDX-License-Identifier: MIT
#include "tests/app/conversion/path_test.h"

#include <cmath>

namespace kelvora {
namespace {

using enum AccessibilityError;
constexpr std::uint64_t editor = fake::Windows::editor;
constexpr std::uint64_t otherEditor = fake::Windows::otherEditor;

TEST_F(PathTest, FocusedElementIsLookedUpTwiceThenInTheWholeSession) {
    constexpr double never = 1e9;
    const AccessibilityAttribute isLeaf{attributeUnsupported, {}};
    struct Case {
        const char* name;
        std::int32_t process;
        double appearsAfter;
        AccessibilityAttribute inner;
        std::u16string_view found; // its text
        double elapsed;
        std::size_t optIns;
    };
    const Case cases[] = {
        {"at once", 101, 0, isLeaf, u"editor", 0, 2},
        {"after a moment", 101, 0.05, isLeaf, u"editor", 0.05, 2},
        {"too late", 101, 0.051, isLeaf, u"other", 0.05, 2},
        {"never", 101, never, isLeaf, u"other", 0.05, 2},
        {"no application", 0, 0, isLeaf, u"other", 0, 0},
        {"nested", 101, 0, {success, desktop.accessibility.element(otherEditor)}, u"other", 0, 2},
        {"inner not readable", 101, 0, {failure, {}}, u"editor", 0, 2},
        {"inner no element", 101, 0, {success, std::u16string(u"text")}, u"editor", 0, 2},
        {"inner absent", 101, 0, {success, {}}, u"editor", 0, 2},
    };
    desktop.windows.field(editor).set(u"editor");
    desktop.windows.field(otherEditor).set(u"other");
    desktop.windows.focus(otherEditor); // of the session; the application is asked all the same
    for (const Case& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        const double started = desktop.scheduler.now();
        desktop.accessibility.views[editor].visibleFrom = started + testCase.appearsAfter;
        desktop.accessibility.views[editor].inner = testCase.inner;
        beginCase();
        const auto element =
            FocusedTextConverter::focusedElement(testCase.process, services()).element;
        const auto requests = desktop.accessibility.requests;
        ASSERT_TRUE(element);
        EXPECT_EQ(element->copyAttributeValue(accessibilityAttribute::value).value,
                  AccessibilityValue(std::u16string(testCase.found)));
        EXPECT_NEAR(desktop.scheduler.now() - started, testCase.elapsed, 1e-9);
        if (testCase.optIns != 0) {
            ASSERT_GE(requests.size(), 2U);
            EXPECT_EQ(requests[0], "enable 101 AXManualAccessibility");
            EXPECT_EQ(requests[1], "enable 101 AXEnhancedUserInterface");
        } else {
            EXPECT_TRUE(requests.empty());
        }
    }
    desktop.accessibility.views.clear();
    EXPECT_EQ(FocusedTextConverter::focusedElement(101, services()).element, nullptr);
}

TEST_F(PathTest, SelectedTextIsReplacedAndTheReplacementVerified) {
    const auto converted = ConversionOutcome::converted(1);
    const auto noText = ConversionOutcome::noText();
    constexpr LogLevel debug = LogLevel::debug, info = LogLevel::info, error = LogLevel::error;
    constexpr const char* taken = "AX path success: bundleID=<private>, path=AX, "
                                  "selectionDetected=true, axErrors=<private>, targetIndex=1";
    constexpr const char* ignored =
        "AX path: verification failed (text unchanged in AX). Falling back to clipboard.";
    constexpr const char* noSelection = "AX path: no selected text. Falling back to clipboard.";
    constexpr const char* hangs = "AX path: the application does not answer. Nothing is sent.";
    const auto selectedText = accessibilityAttribute::selectedText;
    struct Case {
        const char* name;
        std::u16string before;
        View view;
        Outcome outcome;
        std::u16string after;
        LogLevel level;
        std::string message;
    };
    const Case cases[] = {
        {"only the selection", u"vbh [ghbdtn] vbh", {}, converted, u"vbh привет| vbh", info, taken},
        {"still selected",
         u"[ghbdtn]",
         {.readErrors = {{accessibilityAttribute::value, failure}}, .selectsWritten = true},
         converted,
         u"[привет]",
         info,
         taken},
        {"no selection", u"ghbdtn|", {}, {}, u"ghbdtn|", debug, noSelection},
        {"selection not readable",
         u"[ghbdtn]",
         {.readErrors = {{selectedText, noValue}}},
         {},
         u"[ghbdtn]",
         debug,
         "AX path: kAXSelectedTextAttribute copy error (-25212). Falling back to clipboard."},
        {"application hangs at the read",
         u"[ghbdtn]",
         {.readErrors = {{selectedText, cannotComplete}}},
         noText,
         u"[ghbdtn]",
         info,
         hangs},
        {"not convertible",
         u"[2024]",
         {},
         noText,
         u"[2024]",
         info,
         "AX path: selected text is not convertible."},
        {"write refused",
         u"[ghbdtn]",
         {.writeError = attributeUnsupported},
         {},
         u"[ghbdtn]",
         debug,
         "AX path: kAXSelectedTextAttribute set error (-25205). Falling back to clipboard."},
        {"application hangs at the write",
         u"[ghbdtn]",
         {.writeError = cannotComplete},
         noText,
         u"[ghbdtn]",
         info,
         "AX path: the application did not answer, or took the text otherwise than asked. "
         "Nothing more is sent."},
        {"write ignored", u"[ghbdtn]", {.ignoresWrites = true}, {}, u"[ghbdtn]", error, ignored},
        {"the same text elsewhere",
         u"привет [ghbdtn]",
         {.ignoresWrites = true},
         converted,
         u"привет [ghbdtn]",
         info,
         taken},
        {"only within a longer character",
         u"и\u0306 [b]",
         {.ignoresWrites = true},
         {},
         u"и\u0306 [b]",
         error,
         ignored},
        {"write taken, not shown",
         u"[ghbdtn]",
         {.readErrors = {{accessibilityAttribute::value, failure}}},
         {},
         u"привет|",
         error,
         ignored},
    };
    for (const Case& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        desktop.accessibility.views[editor] = testCase.view;
        beginCase();
        show(testCase.before);
        const double started = desktop.scheduler.now();
        const auto element = desktop.accessibility.element(editor);
        const auto result = FocusedTextConverter::tryAXPath(*element, request, services());
        EXPECT_EQ(result.outcome, testCase.outcome);
        const bool isRead = !testCase.view.readErrors.contains(selectedText);
        EXPECT_EQ(result.hadSelection, isRead && testCase.before.find(u'[') != std::string::npos);
        EXPECT_EQ(shown(), testCase.after);
        EXPECT_EQ(posted(), u"");
        ASSERT_FALSE(logged(testCase.level).empty());
        EXPECT_EQ(logged(testCase.level).back(), testCase.message);
        const bool verifies = testCase.message == taken || testCase.message == ignored;
        EXPECT_NEAR(desktop.scheduler.now() - started, verifies ? 0.02 : 0, 1e-9);
    }
}

TEST_F(PathTest, NothingIsWrittenWhereTheFocusIsNoLonger) {
    for (const auto& [role, text] : {std::pair{TextRole::singleLine, u"[ghbdtn] vbh"},
                                     std::pair{TextRole::multiLine, u"ghbdtn| vbh"}}) {
        desktop.accessibility.views[editor] = {.role = role};
        beginCase();
        show(text);
        keyboard->noteFocusChange();
        const auto element = desktop.accessibility.element(editor);
        EXPECT_EQ(FocusedTextConverter::tryAXPath(*element, request, services()).outcome,
                  ConversionOutcome::noText());
        EXPECT_EQ(shown(), text);
    }
}

} // namespace
} // namespace kelvora
