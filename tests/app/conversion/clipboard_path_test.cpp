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
    /// From now until then the application does not answer, once the path has asked it at first.
    void keepBusy(double until) {
        desktop.probe.answerTime = 0;
        desktop.at(0.04, [this] { desktop.probe.answerTime = 9; });
        desktop.at(until, [this] { desktop.probe.answerTime = 0; });
    }

    std::vector<std::string> users;
};

TEST_F(ClipboardPathTest, CopiesConvertsPastesAndGivesThePasteboardBack) {
    constexpr bool selectAll = true, noSelectAll = false;
    const struct {
        const char* name;
        std::u16string before;
        bool allowSelectAll;
        std::u16string_view keys;
        std::u16string after;
        ConversionOutcome outcome;
        int taken; // how often the pasteboard was
    } cases[] = {
        {"a selection", u"a [vbh] b", selectAll, u"CVsss", u"a [мир] b", converted, 3},
        {"spaces are kept", u"a[ vbh ]", noSelectAll, u"CVsssss", u"a[ мир ]", converted, 3},
        {"nothing selected", u"ghb|dtn", selectAll, u"CACV", u"привет|", converted, 4},
        {"select all not allowed", u"ghb|dtn", noSelectAll, u"C", u"ghb|dtn", noText, 1},
        {"an empty field", u"|", selectAll, u"CAC", u"|", noText, 2},
        {"spaces only", u"a[ \n\t]", selectAll, u"C", u"a[ \n\t]", noText, 2},
        {"a field of spaces", u" |", selectAll, u"CAC", u"[ ]", noText, 3},
        {"not convertible", u"[2024]", selectAll, u"C", u"[2024]", noText, 2},
        {"a field that is not", u"20|24", selectAll, u"CACr", u"2024|", noText, 3},
    };
    for (const auto& [name, before, allowSelectAll, keys, after, outcome, taken] : cases) {
        SCOPED_TRACE(name);
        show(before);
        const auto count = desktop.pasteboard.changeCount();
        EXPECT_EQ(convert(allowSelectAll), outcome);
        EXPECT_EQ(posted(), keys);
        EXPECT_EQ(shown(), after);
        EXPECT_EQ(desktop.pasteboard.contents(), users);
        EXPECT_EQ(desktop.pasteboard.changeCount(), count + taken + 1);
    }
}

TEST_F(ClipboardPathTest, SentinelsAreRandom) {
    show(u"|");
    EXPECT_EQ(convert(), noText);
    const std::vector<std::u16string>& written = desktop.pasteboard.written();
    ASSERT_EQ(written.size(), 2U);
    EXPECT_NE(written[0], written[1]);
    for (const std::u16string& sentinel : written)
        EXPECT_TRUE(std::regex_match(
            std::string(sentinel.begin(), sentinel.end()),
            std::regex("__KELVORA_SENTINEL_[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-"
                       "[0-9A-F]{12}__")));
}

TEST_F(ClipboardPathTest, ReselectsCharactersButNotForEver) {
    const struct {
        std::u16string before;
        bool reselects;
        std::size_t presses;
    } cases[] = {
        {u"[vbh]", false, 0},
        {u"[vbh😀e\u0301]", true, 5}, // characters, not units
        {u"[" + std::u16string(2500, u'b') + u"]", true, 2000},
    };
    for (const auto& [before, reselects, presses] : cases) {
        request.reselectPastedText = reselects;
        show(before);
        EXPECT_EQ(convert(), converted);
        EXPECT_EQ(posted(), u"CV" + std::u16string(presses, u's'));
    }
}

TEST_F(ClipboardPathTest, WhatTheUserTypesMeanwhileComesBehindTheText) {
    const struct {
        double typedAt;
        std::u16string_view keys;
    } cases[] = {
        {0.1, u"CV"}, {0.279, u"CVssr"}, {0.282, u"CVsssr"}}; // the last two while selecting
    for (const auto& [typedAt, keys] : cases) {
        show(u"a[vbh]");
        desktop.at(typedAt, [this] { desktop.strike(u'x'); });
        EXPECT_EQ(convert(), converted);
        EXPECT_EQ(posted(), keys);
        keyboard->end();
        EXPECT_EQ(shown(), u"aмирx|");
    }
}

TEST_F(ClipboardPathTest, ACopyIsATextOtherThanTheSentinel) {
    using Copies = std::function<PasteboardSnapshot(std::u16string_view)>;
    const Copies sentinel = [this](auto) {
        return fake::textItem(desktop.pasteboard.written().back());
    };
    const Copies image = [](auto) {
        return PasteboardSnapshot{{{fake::pasteboardData("public.png", "PNG")}}};
    };
    const struct {
        const char* name;
        double delay;
        Copies copies;
        std::u16string before;
        std::u16string_view keys;
    } cases[] = {{"late", 0.4, nullptr, u"vbh [vbh]", u"CV"},
                 {"the sentinel itself", 0, sentinel, u"vbh [vbh]", u"C"},
                 {"no text: not the whole field instead", 0, image, u"vbh [vbh]", u"C"},
                 {"an empty text, of no selection", 0, nullptr, u"vbh|", u"CACV"}};
    request.reselectPastedText = false;
    field().copiesWithoutSelection = true;
    for (const auto& [name, delay, copies, before, keys] : cases) {
        SCOPED_TRACE(name);
        field().copyDelay = delay;
        field().copies = copies;
        show(before);
        EXPECT_EQ(convert(), copies ? noText : converted);
        EXPECT_EQ(posted(), keys);
        EXPECT_EQ(desktop.pasteboard.contents(), users);
    }
}

TEST_F(ClipboardPathTest, WhoeverTakesThePasteboardMeanwhileKeepsIt) {
    const struct {
        const char* name;
        std::u16string before;
        double time; // of the other program's copy
        std::u16string_view keys;
        bool isKept, isRestored;
    } cases[] = {
        // Command-C at 0, its copy is seen at 0.045, Command-V is down at 0.045.
        {"before the restore", u"[vbh]", 0.2, u"CV", true, false},
        {"beside a copy of spaces", u"[ ]", 0.02, u"C", true, false},
        {"after the restore", u"[vbh]", 0.5, u"CV", true, true},
        {"nobody", u"[vbh]", 99, u"CV", false, true},
    };
    request.reselectPastedText = false;
    for (const auto& [name, before, time, keys, isKept, isRestored] : cases) {
        SCOPED_TRACE(name);
        show(before);
        desktop.at(time, [this] { desktop.pasteboard.copyText(u" "); });
        const int restoreCount = desktop.pasteboard.restoreCount();
        static_cast<void>(convert(false));
        EXPECT_EQ(posted(), keys);
        desktop.runFor(1);
        EXPECT_EQ(desktop.pasteboard.restoreCount(), restoreCount + (isRestored ? 1 : 0));
        EXPECT_EQ(desktop.pasteboard.contents(),
                  isKept ? std::vector<std::string>{"1 public.utf8-plain-text:  "} : users);
        desktop.pasteboard.restore({});
        users.clear();
    }
}

TEST_F(ClipboardPathTest, WhatAnotherProgramCopiesIsNotTakenForTheSelection) {
    const struct {
        const char* name;
        std::u16string before;
        double copyDelay; // of the application; the other program copies at 0.02
        std::u16string_view other;
        std::u16string_view after;
        std::u16string_view keys;
        bool isRestored;
    } cases[] = {
        {"the application's comes last", u"[vbh]", 0.1, u"ghbdtn", u"мир|", u"CV", true},
        {"and is not convertible", u"[2024]", 0.1, u"ghbdtn", u"[2024]", u"C", true},
        {"there is none", u"vb|h", 0, u"2024", u"vb|h", u"C", false},
        {"made on its behalf", u"vb|h", 0, u"vbh", u"vbмир|h", u"CV", true},
        {"a manager takes the pasteboard first", u"[2024]", 0, u"2024", u"[2024]", u"C", false},
    };
    request.reselectPastedText = false;
    for (const auto& testCase : cases) {
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
    const auto lock = [this] { desktop.windows.setGrabbed(true); };
    const auto copyElsewhere = [this] { desktop.pasteboard.copyText(u"x"); };
    int clears = 0;
    const struct {
        const char* name;
        std::function<void()> disturb;
        std::u16string_view keys;
        bool isRestored;
    } cases[] = {
        {"focus moves before the paste",
         [this] { desktop.at(0.02, [this] { keyboard->noteFocusChange(); }); }, u"C", true},
        {"a locker takes the keyboard midway", [&] { desktop.at(0.02, lock); }, u"C", true},
        {"or just at the paste",
         [this] {
             desktop.keyboard.refuses = [this](KeyCode keyCode, KeyDirection) {
                 desktop.windows.setGrabbed(keyCode == keyCode::v);
                 return false;
             };
         },
         u"CV", true},
        {"another program copies when the sentinel is written",
         [&] { desktop.pasteboard.onCleared = copyElsewhere; }, u"", false},
        {"or the conversion",
         [&] { desktop.pasteboard.onCleared = [&] { ++clears == 2 ? copyElsewhere() : void(); }; },
         u"C", false},
        {"or when the copy was read", [&] { desktop.pasteboard.onRead = copyElsewhere; }, u"C",
         false},
    };
    for (const auto& [name, disturb, keys, isRestored] : cases) {
        SCOPED_TRACE(name);
        show(u"[vbh]");
        const std::u16string before = field().text();
        const std::uint64_t window = desktop.windows.focusTarget().id;
        beginCase();
        disturb();
        EXPECT_EQ(FocusedTextConverter::convertThroughClipboard(request, services(), true), noText);
        desktop.pasteboard.onCleared = nullptr;
        desktop.pasteboard.onRead = nullptr;
        desktop.keyboard.refuses = nullptr;
        desktop.windows.setGrabbed(false);
        desktop.run();
        EXPECT_EQ(posted(), keys);
        EXPECT_EQ(desktop.windows.text(window), before);
        EXPECT_EQ(desktop.pasteboard.contents() == users, isRestored);
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
    keepBusy(99);
    EXPECT_EQ(convert(), noText);
    EXPECT_EQ(posted(), u"C");
    desktop.run();
    EXPECT_EQ(desktop.pasteboard.contents(), users);
}

TEST_F(ClipboardPathTest, APasteThatComesLateFindsTheConversion) {
    show(u"a [vbh]");
    field().pasteDelay = 0.9;
    keepBusy(1);
    EXPECT_EQ(convert(), converted);
    EXPECT_EQ(shown(), u"a [мир]");
    EXPECT_EQ(desktop.pasteboard.contents(), users);

    // What is typed on is not kept back for longer than a moment, and must not replace the text.
    show(u"a [vbh]");
    field().pasteDelay = 5;
    keepBusy(5.1);
    desktop.at(5.1, [this] { desktop.strike(u'x'); });
    EXPECT_EQ(convert(), converted);
    EXPECT_EQ(shown(), u"a мирx|");
    EXPECT_EQ(desktop.pasteboard.contents(), users);
}

TEST_F(ClipboardPathTest, KeysTypedMeanwhileDoNotReplaceTheWholeField) {
    for (const bool isTaken : {false, true}) {
        SCOPED_TRACE(isTaken ? "pasteboard taken" : "nothing to copy");
        show(isTaken ? u"vb|h" : u" |");
        if (isTaken)
            desktop.pasteboard.onRead = [this] { desktop.pasteboard.copyText(u"y"); };
        desktop.at(0.45, [this] { desktop.strike(u'x'); });
        EXPECT_EQ(convert(), noText);
        keyboard->end();
        EXPECT_EQ(shown(), isTaken ? u"vbhx|" : u" x|");
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

} // namespace
} // namespace kelvora
