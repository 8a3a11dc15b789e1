// SPDX-License-Identifier: MIT
#include "tests/app/conversion/path_test.h"

#include <functional>
#include <regex>

namespace kelvora {
namespace {

const auto converted = ConversionOutcome::converted(1);
const auto noText = ConversionOutcome::noText();

class ClipboardPathTest : public PathTest {
protected:
    ClipboardPathTest() {
        desktop.pasteboard.copy({{{fake::pasteboardData("text/html", "<b>user</b>"),
                                   fake::pasteboardData("public.utf8-plain-text", "user")}},
                                 {{fake::pasteboardData("image/png", "\x89PNG")}}});
        users = desktop.pasteboard.contents();
    }

    ConversionOutcome convert(bool allowSelectAll = true) {
        beginCase();
        return FocusedTextConverter::convertThroughClipboard(request, services(), allowSelectAll);
    }
    /// The end of the line that says how it went, its private parts left out.
    std::string result() const {
        for (const LogLevel level : {LogLevel::info, LogLevel::error}) {
            for (const std::string& line : logged(level)) {
                return (level == LogLevel::error ? "error: " : "") + line;
            }
        }
        return "";
    }

    std::vector<std::string> users;
};

constexpr const char* success =
    "Clipboard path success: bundleID=<private>, path=clipboard, selectionDetected=";
constexpr const char* aborted = "error: Clipboard path aborted: no plain non-empty text. "
                                "bundleID=<private>, selectionDetected=";
constexpr const char* notConvertible =
    "Clipboard path: text not convertible. bundleID=<private>, selectionDetected=";

std::string counts(const char* line, bool selection, int before, int after, const char* end = "") {
    return std::string(line) + (selection ? "true" : "false") +
           ", sentinelResult=<private>, pbChangeBefore=" + std::to_string(before) +
           ", pbChangeAfter=" + std::to_string(after) + end;
}

TEST_F(ClipboardPathTest, CopiesConvertsPastesAndGivesThePasteboardBack) {
    constexpr bool selectAll = true, noSelectAll = false;
    struct Case {
        const char* name;
        std::u16string before;
        bool allowSelectAll;
        std::u16string_view keys;
        std::u16string after;
        ConversionOutcome outcome;
        // Of the log line: its start, and how often the pasteboard was taken meanwhile.
        const char* line;
        bool selection;
        int taken;
        std::size_t written;
    };
    const std::u16string untouched = u"ghbdtn";
    const Case cases[] = {
        {"a selection", u"a [vbh] b", selectAll, u"CVsss", u"a [мир] b", converted, success, true,
         3, 2},
        {"spaces in it are kept", u"a[ vbh ]", noSelectAll, u"CVsssss", u"a[ мир ]", converted,
         success, true, 3, 2},
        {"nothing selected", u"ghb|dtn", selectAll, u"CACV", u"привет|", converted, success, false,
         4, 3},
        {"and everything not allowed", u"ghb|dtn", noSelectAll, u"C", u"ghb|dtn", noText, aborted,
         false, 1, 1},
        {"an empty field", u"|", selectAll, u"CAC", u"|", noText, aborted, false, 2, 2},
        {"spaces only", u"a[ \n\t]", selectAll, u"C", u"a[ \n\t]", noText, aborted, true, 2, 1},
        {"a field of spaces", u" |", selectAll, u"CAC", u"[ ]", noText, aborted, false, 3, 2},
        {"not convertible", u"[2024]", selectAll, u"C", u"[2024]", noText, notConvertible, true, 2,
         1},
        {"a field that is not", u"20|24", selectAll, u"CACr", u"2024|", noText, notConvertible,
         false, 3, 2},
    };
    for (const Case& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        show(testCase.before);
        const auto before = static_cast<int>(desktop.pasteboard.changeCount());
        const std::size_t written = desktop.pasteboard.written().size();
        EXPECT_EQ(convert(testCase.allowSelectAll), testCase.outcome);
        EXPECT_EQ(posted(), testCase.keys);
        EXPECT_EQ(shown(), testCase.after);
        EXPECT_EQ(result(),
                  counts(testCase.line, testCase.selection, before, before + testCase.taken,
                         testCase.outcome == converted ? ", targetIndex=1" : ""));
        EXPECT_EQ(desktop.pasteboard.written().size(), written + testCase.written);
        EXPECT_EQ(desktop.pasteboard.contents(), users);
        EXPECT_EQ(desktop.pasteboard.changeCount(), before + testCase.taken + 1);
    }
}

TEST_F(ClipboardPathTest, SentinelsAreRandomAndPollsAreCounted) {
    show(u"|");
    const double started = desktop.scheduler.now();
    EXPECT_EQ(convert(), noText);
    EXPECT_NEAR(desktop.scheduler.now() - started, 2 * (0.03 + 26 * 0.015) + 0.03 + 0.015, 0.01);
    const auto& written = desktop.pasteboard.written();
    ASSERT_EQ(written.size(), 2U);
    EXPECT_NE(written[0], written[1]);
    const std::regex form("__KELVORA_SENTINEL_[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-"
                          "[89AB][0-9A-F]{3}-[0-9A-F]{12}__");
    for (const std::u16string& sentinel : written) {
        EXPECT_TRUE(std::regex_match(std::string(sentinel.begin(), sentinel.end()), form));
    }
}

TEST_F(ClipboardPathTest, ReselectsCharactersButNotForEver) {
    struct Case {
        std::u16string before;
        bool reselects;
        std::size_t presses;
    };
    const Case cases[] = {
        {u"[vbh]", false, 0},
        {u"[vbh😀e\u0301]", true, 5}, // characters, not units
        {u"[" + std::u16string(2500, u'b') + u"]", true, 2000},
    };
    for (const Case& testCase : cases) {
        request.reselectPastedText = testCase.reselects;
        show(testCase.before);
        EXPECT_EQ(convert(), converted);
        EXPECT_EQ(posted(), u"CV" + std::u16string(testCase.presses, u's'));
    }
}

TEST_F(ClipboardPathTest, WhatTheUserTypesMeanwhileComesBehindTheText) {
    struct Case {
        double typedAt;
        std::u16string_view keys;
    };
    // The last two in the middle of selecting, and at its end.
    for (const Case& testCase : {Case{0.1, u"CV"}, {0.279, u"CVssr"}, {0.282, u"CVsssr"}}) {
        show(u"a[vbh]");
        desktop.at(testCase.typedAt, [&] { desktop.strike(u'x'); });
        EXPECT_EQ(convert(), converted);
        EXPECT_EQ(posted(), testCase.keys);
        keyboard->end();
        EXPECT_EQ(shown(), u"aмирx|");
    }
}

TEST_F(ClipboardPathTest, ACopyIsATextOtherThanTheSentinel) {
    using Copies = std::function<std::u16string(std::u16string_view)>;
    struct Case {
        const char* name;
        double delay;
        Copies copies;
        std::u16string_view keys;
    };
    const Copies sentinel = [this](std::u16string_view) {
        return desktop.pasteboard.written().back();
    };
    const Copies nothing = [](std::u16string_view) { return std::u16string(); };
    const Case cases[] = {
        {"late", 0.4, nullptr, u"CV"},
        {"too late", 0.6, nullptr, u"C"},
        {"the sentinel itself", 0, sentinel, u"C"},
        {"empty", 0, nothing, u"C"},
    };
    request.reselectPastedText = false;
    for (const Case& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        field().copyDelay = testCase.delay;
        field().copies = testCase.copies;
        desktop.probe.answerTime = 0;
        // It hangs for as long as a late copy takes.
        desktop.at(0.1, [&] { desktop.probe.answerTime = testCase.delay > 0.5 ? 9 : 0; });
        show(u"[vbh]");
        const ConversionOutcome outcome = convert(testCase.delay > 0.5);
        EXPECT_EQ(posted(), testCase.keys);
        EXPECT_EQ(outcome == converted,
                  result().find("selectionDetected=true") != std::string::npos);
        desktop.run();
        EXPECT_EQ(desktop.pasteboard.contents(), users);
    }
}

TEST_F(ClipboardPathTest, WhoeverTakesThePasteboardMeanwhileKeepsIt) {
    struct Case {
        const char* name;
        std::u16string before;
        double time; // of the other program's copy
        std::u16string_view keys;
        bool isKept, isRestored;
    };
    // Command-C at 0, its copy is seen at 0.045, Command-V is down at 0.045.
    const Case cases[] = {
        {"before the restore", u"[vbh]", 0.2, u"CV", true, false},
        {"beside a copy of spaces", u"[ ]", 0.02, u"C", true, false},
        {"after the restore", u"[vbh]", 0.5, u"CV", true, true},
        {"nobody", u"[vbh]", 99, u"CV", false, true},
    };
    request.reselectPastedText = false;
    for (const Case& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        show(testCase.before);
        desktop.at(testCase.time, [this] { desktop.pasteboard.copyText(u" "); });
        const int restoreCount = desktop.pasteboard.restoreCount();
        static_cast<void>(convert(false));
        EXPECT_EQ(posted(), testCase.keys);
        desktop.runFor(1);
        EXPECT_EQ(desktop.pasteboard.restoreCount(), restoreCount + (testCase.isRestored ? 1 : 0));
        EXPECT_EQ(desktop.pasteboard.contents(),
                  testCase.isKept ? std::vector<std::string>{"1 public.utf8-plain-text:  "}
                                  : users);
        desktop.pasteboard.restore({});
        users.clear();
    }
}

TEST_F(ClipboardPathTest, WhatAnotherProgramCopiesIsNotTakenForTheSelection) {
    struct Case {
        const char* name;
        std::u16string before;
        double copyDelay; // of the application; the other program copies at 0.02
        std::u16string_view other;
        std::u16string after;
        std::u16string_view keys;
        bool isRestored;
    };
    const Case cases[] = {
        {"the application's comes last", u"[vbh]", 0.1, u"ghbdtn", u"мир|", u"CV", true},
        {"and is not convertible", u"[2024]", 0.1, u"ghbdtn", u"[2024]", u"C", true},
        {"there is none", u"vb|h", 0, u"2024", u"vb|h", u"C", false},
        {"made on its behalf", u"vb|h", 0, u"vbh", u"vbмир|h", u"CV", true},
        {"a manager takes the pasteboard first", u"[2024]", 0, u"2024", u"[2024]", u"C", false},
    };
    request.reselectPastedText = false;
    for (const Case& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        show(testCase.before);
        field().copyDelay = testCase.copyDelay;
        desktop.probe.answerTime = 0;
        desktop.at(0.01, [this] { desktop.probe.answerTime = 0.2; }); // busy with the copy
        desktop.at(0.02, [&] { desktop.pasteboard.copyText(testCase.other); });
        const int restoreCount = desktop.pasteboard.restoreCount();
        static_cast<void>(convert());
        EXPECT_EQ(posted(), testCase.keys);
        EXPECT_EQ(shown(), testCase.after);
        EXPECT_EQ(desktop.pasteboard.restoreCount(), restoreCount + (testCase.isRestored ? 1 : 0));
    }
}

TEST_F(ClipboardPathTest, StopsAndRestoresWhenItsKeysOrItsTextWouldGoAstray) {
    struct Case {
        const char* name;
        std::function<void()> disturb;
        std::u16string_view keys;
        bool isRestored;
    };
    const Case cases[] = {
        {"focus moves before the paste",
         [this] { desktop.at(0.02, [this] { keyboard->noteFocusChange(); }); }, u"C", true},
        {"a locker takes the keyboard midway",
         [this] { desktop.at(0.02, [this] { desktop.windows.setGrabbed(true); }); }, u"C", true},
        {"or just at the paste",
         [this] {
             desktop.keyboard.refuses = [this](KeyCode keyCode, KeyDirection) {
                 desktop.windows.setGrabbed(keyCode == keyCode::v);
                 return false;
             };
         },
         u"CV", true},
        {"another program copies when the sentinel is written",
         [this] { desktop.pasteboard.onCleared = [this] { desktop.pasteboard.copyText(u"x"); }; },
         u"", false},
        {"or the conversion",
         [this] {
             desktop.pasteboard.onCleared = [this, clears = 0]() mutable {
                 if (++clears == 2) {
                     desktop.pasteboard.copyText(u"x");
                 }
             };
         },
         u"C", false},
        {"or when the copy was read",
         [this] { desktop.pasteboard.onRead = [this] { desktop.pasteboard.copyText(u"x"); }; },
         u"C", false},
    };
    for (const Case& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        show(u"[vbh]");
        const std::u16string before = field().text();
        const std::uint64_t window = desktop.windows.focusTarget().id;
        beginCase();
        testCase.disturb();
        EXPECT_EQ(FocusedTextConverter::convertThroughClipboard(request, services(), true), noText);
        desktop.pasteboard.onCleared = nullptr;
        desktop.pasteboard.onRead = nullptr;
        desktop.keyboard.refuses = nullptr;
        desktop.windows.setGrabbed(false);
        desktop.run();
        EXPECT_EQ(posted(), testCase.keys);
        EXPECT_EQ(desktop.windows.text(window), before);
        EXPECT_EQ(result(), "error: Clipboard path interrupted: the application is out of reach or "
                            "the pasteboard was taken. bundleID=<private>");
        EXPECT_EQ(desktop.pasteboard.contents() == users, testCase.isRestored);
    }
}

TEST_F(ClipboardPathTest, ALateCopyOfTheSelectionIsNotTakenForTheWholeField) {
    for (const double delay : {0.41, 0.44, 0.47}) {
        field().copyDelay = delay;
        desktop.probe.answerTime = 0.06; // busy until then
        show(u"vbh [ghbdtn] vbh");
        EXPECT_EQ(convert(), converted);
        EXPECT_EQ(shown(), u"vbh [привет] vbh");
    }
    field().copyDelay = 0.6;
    show(u"vbh [ghbdtn] vbh");
    desktop.at(0.1, [this] { desktop.probe.answerTime = 9; });
    EXPECT_EQ(convert(), noText);
    EXPECT_EQ(posted(), u"C");
}

TEST_F(ClipboardPathTest, APasteThatComesLateFindsTheConversion) {
    struct Case {
        double delay;
        std::u16string_view after;
    };
    // What is typed on is not kept back for longer than a moment, and must not replace the text.
    for (const Case& testCase : {Case{0.9, u"a [мир]"}, {5, u"a мирx|"}}) {
        field().pasteDelay = testCase.delay;
        desktop.probe.answerTime = 0;
        desktop.at(0.04, [this] { desktop.probe.answerTime = 9; });
        desktop.at(testCase.delay + 0.1, [this] { desktop.probe.answerTime = 0; });
        if (testCase.delay > 2) {
            desktop.at(testCase.delay + 0.1, [this] { desktop.strike(u'x'); });
        }
        show(u"a [vbh]");
        EXPECT_EQ(convert(), converted);
        EXPECT_EQ(shown(), testCase.after);
        EXPECT_EQ(desktop.pasteboard.contents(), users);
    }
}

TEST_F(ClipboardPathTest, WhatIsNoTextIsNotReplaced) {
    show(u"vbh [x]"); // an image in a document, say
    field().copies = [](std::u16string_view) { return std::u16string(); };
    EXPECT_EQ(convert(), noText);
    EXPECT_EQ(posted(), u"C");
    EXPECT_EQ(desktop.pasteboard.contents(), users);
}

TEST_F(ClipboardPathTest, KeysTypedMeanwhileDoNotReplaceTheWholeField) {
    struct Case {
        const char* name;
        std::function<void()> disturb;
        std::u16string before, after;
    };
    const Case cases[] = {
        {"nothing to copy", [] {}, u" |", u" x|"},
        {"pasteboard taken",
         [this] { desktop.pasteboard.onRead = [this] { desktop.pasteboard.copyText(u"y"); }; },
         u"vb|h", u"vbhx|"},
    };
    for (const Case& testCase : cases) {
        SCOPED_TRACE(testCase.name);
        show(testCase.before);
        testCase.disturb();
        desktop.at(0.45, [this] { desktop.strike(u'x'); });
        EXPECT_EQ(convert(), noText);
        keyboard->end();
        EXPECT_EQ(shown(), testCase.after);
    }
}

TEST_F(ClipboardPathTest, WaitsForModifiersBeforeAnythingIsWritten) {
    desktop.keyboard.canHold = false;
    desktop.keyboard.press(keyCode::leftShift);
    desktop.at(0.1, [this] { desktop.keyboard.release(keyCode::leftShift); });
    desktop.at(0.09, [this] { EXPECT_TRUE(desktop.pasteboard.written().empty()); });
    show(u"[vbh]");
    const double started = desktop.scheduler.now();
    EXPECT_EQ(convert(), converted);
    EXPECT_NEAR(desktop.keyboard.posted.front().time - started, 0.1, 0.006);
}

TEST_F(ClipboardPathTest, TypesThatTheirOwnerRefusesAreTheOnlyLoss) {
    desktop.pasteboard.refusedTypes = {"image/png", "text/html"};
    show(u"[vbh]");
    EXPECT_EQ(convert(), converted);
    EXPECT_EQ(desktop.pasteboard.contents(),
              (std::vector<std::string>{"1 public.utf8-plain-text: user"}));
}

} // namespace
} // namespace kelvora
