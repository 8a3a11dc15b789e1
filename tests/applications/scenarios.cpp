// SPDX-License-Identifier: MIT
#include "tests/applications/scenario.h"

namespace kelvora::applications {

namespace {

const std::vector<Field> lines{Field::text, Field::editable};
const std::vector<Field> anyText{Field::entry, Field::text, Field::editable};

const std::vector<const char*> everything{"Control_L+a"};
const std::vector<const char*> nothingAtTheEnd{"Control_L+End"};
const std::vector<const char*> lastWord{"Control_L+End", "Control_L+Shift_L+Left"};

std::string repeated(const std::string& unit, int count) {
    std::string text;
    for (int index = 0; index < count; ++index) {
        text += unit;
    }
    return text;
}

std::string manyLines(const std::string& words) {
    const std::string line = repeated(words, 5) + "\n";
    return repeated(line, 999) + repeated(words, 5);
}

} // namespace

const std::vector<Scenario>& scenarios() {
    static const std::vector<Scenario> all{
        {.name = "a selected word",
         .fields = anyText,
         .before = "hello ghbdtn",
         .keys = lastWord,
         .selected = "ghbdtn",
         .after = "hello привет"},
        {.name = "several selected lines",
         .fields = lines,
         .before = "Ghbdtn? rfr\nltkf\n\nlheu",
         .keys = everything,
         .selected = "Ghbdtn? rfr\nltkf\n\nlheu",
         .after = "Привет, как\nдела\n\nдруг"},
        {.name = "100,000 selected characters",
         .fields = lines,
         .before = manyLines("ghbdtn rfr ltkf lheu"),
         .keys = everything,
         .selected = manyLines("ghbdtn rfr ltkf lheu"),
         .after = manyLines("привет как дела друг")},
        {.name = "selected words around emoji",
         .fields = anyText,
         .before = "ghbdtn 😀👨‍👩‍👧 rfr",
         .keys = everything,
         .selected = "ghbdtn 😀👨‍👩‍👧 rfr",
         .after = "привет 😀👨‍👩‍👧 как"},
        {.name = "selected spaces",
         .fields = anyText,
         .before = "   ",
         .keys = everything,
         .selected = "   ",
         .after = "   "},
        {.name = "selected digits",
         .fields = anyText,
         .before = "2024 1234",
         .keys = everything,
         .selected = "2024 1234",
         .after = "2024 1234"},
        {.name = "20 MB on the clipboard",
         .fields = anyText,
         .before = "hello ghbdtn",
         .keys = lastWord,
         .selected = "ghbdtn",
         .after = "hello привет",
         .event = Event::largeClipboard},
        {.name = "nothing selected, one line",
         .fields = {Field::entry},
         .before = "ghbdtn rfr",
         .keys = nothingAtTheEnd,
         .selected = "",
         .after = "привет как"},
        {.name = "nothing selected, the caret in a word",
         .fields = lines,
         .before = "ghbdtn ltkf rfr",
         .keys = {"Control_L+Home", "Control_L+Right", "Right", "Right", "Right"},
         .selected = "",
         .after = "ghbdtn дела rfr",
         .afterUnaware = "привет дела как",
         .afterReadable = "ghbdtn ltkf rfr"},
        {.name = "nothing selected, no word at the caret",
         .fields = lines,
         .before = "ghbdtn\n2024",
         .keys = nothingAtTheEnd,
         .selected = "",
         .after = "ghbdtn\n2024",
         .afterUnaware = "привет\n2024"},
        {.name = "selected text that cannot be edited",
         .fields = {Field::readOnly},
         .before = "ghbdtn rfr ltkf",
         .keys = everything,
         .selected = "ghbdtn rfr ltkf",
         .after = "ghbdtn rfr ltkf"},
        {.name = "a typed password",
         .fields = {Field::password},
         .before = "ghbdtn",
         .keys = {},
         .selected = "",
         .after = "ghbdtn"},
        {.name = "another program copies meanwhile",
         .fields = anyText,
         .before = "hello ghbdtn",
         .keys = lastWord,
         .selected = "ghbdtn",
         .after = "hello привет",
         .orElse = "hello ghbdtn", // the copy may come in the place of the application's own
         .event = Event::copyInTheMiddle},
        {.name = "the application does not react",
         .fields = anyText,
         .before = "hello ghbdtn",
         .keys = lastWord,
         .selected = "ghbdtn",
         .after = "hello ghbdtn",
         .event = Event::stoppedProcess},
        {.name = "the application ends meanwhile",
         .fields = {Field::entry, Field::text},
         .before = "hello ghbdtn",
         .keys = lastWord,
         .selected = "ghbdtn",
         .after = "",
         .event = Event::exitingProcess},
        {.name = "nothing selected, a cell of a sheet",
         .fields = {Field::cell},
         .before = "ghbdtn\nrfr\n",
         .keys = {"Control_L+Home"},
         .selected = "",
         .after = "привет\nrfr\n",
         .orElse = "ghbdtn\nrfr\n"},
        {.name = "files, none selected",
         .fields = {Field::files},
         .before = "ghbdtn rfr.txt\n",
         .keys = {},
         .selected = "",
         .after = "ghbdtn rfr.txt\n"},
        {.name = "selected files",
         .fields = {Field::files},
         .before = "ghbdtn rfr.txt\n",
         .keys = everything,
         .selected = "",
         .after = "ghbdtn rfr.txt\n"},
        {.name = "nothing typed, a program runs",
         .fields = {Field::terminal},
         .before = "",
         .keys = {},
         .selected = "",
         .after = ""},
        {.name = "a typed word, a program runs",
         .fields = {Field::terminal},
         .before = "ghbdtn",
         .keys = {},
         .selected = "",
         .after = "ghbdtn\b\b\b\b\b\bпривет"},
    };
    return all;
}

} // namespace kelvora::applications
