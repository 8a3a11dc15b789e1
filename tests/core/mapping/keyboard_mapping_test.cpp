// SPDX-License-Identifier: MIT
#include "core/mapping/keyboard_mapping.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/text/encoding.h"

namespace kelvora {
namespace {

using enum KeyboardScript;

TEST(KeyboardMapping, rowsStandKeyByKey) {
    struct Row {
        std::u16string_view latin;
        std::u16string_view russian;
    };
    const std::vector<Row> rows = {
        {KeyboardMapping::unshiftedLatin, KeyboardMapping::unshiftedRussian},
        {KeyboardMapping::shiftedLatin, KeyboardMapping::shiftedRussian},
    };
    for (const Row& row : rows) {
        ASSERT_EQ(row.latin.size(), 34u);
        ASSERT_EQ(row.russian.size(), 34u);
        EXPECT_EQ(KeyboardMapping::convert(row.latin, latin), row.russian);
        EXPECT_EQ(KeyboardMapping::convert(row.russian, cyrillic), row.latin);
    }
}

TEST(KeyboardMapping, detectsTheScriptWithMoreLetters) {
    struct Case {
        std::u16string text;
        std::optional<KeyboardScript> script;
    };
    const std::vector<Case> cases = {
        {u"ghbdtn", latin},
        {u"руддщ", cyrillic},
        {u"abвг", latin},
        {u"aвг", cyrillic},
        {u"123 ;'", {}},
        {u"", {}},
        {u"é\u00DF\u0430", cyrillic}, // only ASCII counts as Latin
        {u"\u0400", cyrillic},
        {u"\u052F", cyrillic},
        {u"\u03FF\u0530", {}},
        {u"@[`{", {}},
        {u"\U00010400", {}},
        {std::u16string(1, 0xD801), {}},
    };
    for (const Case& testCase : cases) {
        EXPECT_EQ(KeyboardMapping::detectedScript(testCase.text), testCase.script)
            << toUtf8(testCase.text);
    }
}

TEST(KeyboardMapping, convertsWholeCharacters) {
    struct Case {
        std::u16string text;
        KeyboardScript from;
        std::u16string converted;
    };
    const std::vector<Case> cases = {
        {u"ghbdtn", latin, u"привет"},
        {u"Ghbdtn", latin, u"Привет"},
        {u"руддщ", cyrillic, u"hello"},
        {u"f,", latin, u"аб"},
        {u"аб.", cyrillic, u"f,/"},
        {u"7 é\u00A0я", latin, u"7 é\u00A0я"},
        {u"q\u0331w", latin, u"q\u0331ц"},      // a letter with a mark is another character
        {u"\u0438\u0306", cyrillic, u"q"},      // decomposed й
        {u"\u212A\u037E\u1FEF", latin, u"Лжё"}, // canonical twins of K ; `
        {u"", latin, u""},
    };
    for (const Case& testCase : cases) {
        EXPECT_EQ(KeyboardMapping::convert(testCase.text, testCase.from), testCase.converted)
            << toUtf8(testCase.text);
    }
}

TEST(KeyboardMapping, convertsFromTheDetectedScript) {
    EXPECT_EQ(KeyboardMapping::converted(u"ghbdtn"), (ScriptConversion{u"привет", cyrillic}));
    EXPECT_EQ(KeyboardMapping::converted(u"руддщ"), (ScriptConversion{u"hello", latin}));
    EXPECT_EQ(KeyboardMapping::converted(u"2024"), std::nullopt);
}

} // namespace
} // namespace kelvora
