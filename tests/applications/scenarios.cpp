// SPDX-License-Identifier: MIT
#include "tests/applications/scenario.h"

namespace kelvora::applications {

namespace {

using enum Field;
using enum Event;
using Keys = std::vector<const char*>;

std::string manyLines(const std::string& words) {
    std::string result;
    for (int line = 0; line < 1000; ++line) {
        result += line > 0 ? "\n" : "";
        for (int count = 0; count < 5; ++count)
            result += words;
    }
    return result;
}

} // namespace

const std::vector<Scenario>& scenarios() {
    const std::vector<Field> lines{text, editable};
    const std::vector<Field> anyText{entry, text, editable};
    const std::vector<Field> plainText{entry, text}, fixedText{readOnly}, sheet{cell};
    const Keys all{"Control_L+a"};
    const Keys home{"Control_L+Home"}, end{"Control_L+End"};
    const Keys lastWord{"Control_L+End", "Control_L+Shift_L+Left"};
    const Keys intoTheSecondWord{"Control_L+Home", "Control_L+Right", "Right", "Right", "Right"};
    const std::string hello = "hello ghbdtn", repaired = "hello привет", word = "ghbdtn";
    const std::string four = "Ghbdtn? rfr\nltkf\n\nlheu";
    const std::string emoji = "ghbdtn 😀👨‍👩‍👧 rfr";
    const std::string many = manyLines("ghbdtn rfr ltkf lheu");
    const std::string fixed = "ghbdtn rfr ltkf", cells = "ghbdtn\nrfr\n", file = "ghbdtn rfr.txt\n";
    static const std::vector<Scenario> cases{
        {"a selected word", anyText, hello, lastWord, word, repaired},
        {"several selected lines", lines, four, all, four, "Привет, как\nдела\n\nдруг"},
        {"100,000 selected characters", lines, many, all, many, manyLines("привет как дела друг")},
        {"selected words around emoji", anyText, emoji, all, emoji,
         "привет 😀👨‍👩‍👧 как"},
        {"selected spaces", anyText, "   ", all, "   ", "   "},
        {"selected digits", anyText, "2024 1234", all, "2024 1234", "2024 1234"},
        {"20 MB on the clipboard", anyText, hello, lastWord, word, repaired, largeClipboard},
        {"nothing selected, one line", {entry}, "ghbdtn rfr", end, "", "привет как"},
        {"nothing selected, the caret in a word", lines, "ghbdtn ltkf rfr", intoTheSecondWord, "",
         "ghbdtn дела rfr", none, "", "привет дела как", "ghbdtn ltkf rfr"},
        {"nothing selected, no word at the caret", lines, "ghbdtn\n2024", end, "", "ghbdtn\n2024",
         none, "", "привет\n2024"},
        {"selected text that cannot be edited", fixedText, fixed, all, fixed, fixed},
        {"a typed password", {password}, word, {}, "", word},
        // The copy may come in the place of the application's own.
        {"another program copies meanwhile", anyText, hello, lastWord, word, repaired,
         copyInTheMiddle, hello},
        {"the application does not react", anyText, hello, lastWord, word, hello, stoppedProcess},
        {"the application ends meanwhile", plainText, hello, lastWord, word, "", exitingProcess},
        {"nothing selected, a cell of a sheet", sheet, cells, home, "", "привет\nrfr\n", none,
         cells},
        {"files, none selected", {files}, file, {}, "", file},
        {"selected files", {files}, file, all, "", file},
        {"nothing typed, a program runs", {terminal}, "", {}, "", ""},
        {"a typed word, a program runs", {terminal}, word, {}, "", "ghbdtn\b\b\b\b\b\bпривет"},
    };
    return cases;
}

} // namespace kelvora::applications
