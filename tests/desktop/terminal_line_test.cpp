// SPDX-License-Identifier: MIT
#include "tests/support/real_desktop/terminal_line.h"

#include <array>
#include <gtest/gtest.h>

namespace kelvora::real {

namespace {

TEST(TerminalLine, ShowsWhatATerminalWouldShow) {
    struct Case {
        const char* name;
        const char* output;
        const char* line;
    };
    constexpr std::array cases{
        Case{"only the last line", "one\r\n> two", "> two"},
        Case{"Backspace erases at the end", "> при\b\x1b[K", "> пр"},
        Case{"Backspace as the terminal driver echoes it", "> ab\b \b", "> a "},
        Case{"a character in between", "> ab\b\x1b[1@хb\b", "> aхb"},
        Case{"a character taken out", "> abc\b\b\b\x1b[1P", "> bc"},
        Case{"back to the start of the line", "> abc\r\x1b[2C\x1b[Kд", "> д"},
        Case{"a sequence that is not yet complete", "> a\x1b[", "> a"},
        Case{"a sequence that is not known", "> \x1b[5Z", "> \uFFFD"},
    };
    for (const Case& row : cases) {
        EXPECT_EQ(lastTerminalLine(row.output), row.line) << row.name;
    }
}

} // namespace

} // namespace kelvora::real
