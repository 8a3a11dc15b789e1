// SPDX-License-Identifier: MIT
#include "core/mapping/keyboard_mapping.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/text/encoding.h"

namespace kelvora {
namespace {

using enum KeyboardScript;

TEST(KeyboardMapping, detectsTheScriptWithMoreLetters) {
    struct Case {
        std::u16string text;
        std::optional<KeyboardScript> script;
    };
    const std::vector<Case> cases = {
        {u"ghbdtn", latin},    {u"abвг", latin},        {u"aвг", cyrillic},
        {u"123 ;'", {}},       {u"éß\u0430", cyrillic}, {u"\u0400a\u052F", cyrillic},
        {u"\u03FF\u0530", {}}, {u"@[`{", {}},
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
        {u"Ghb<tn,", latin, u"ПриБетб"},
        {u"Руддщ", cyrillic, u"Hello"},
        {u"аб.", cyrillic, u"f,/"},
        {u"7 é\u00A0я", latin, u"7 é\u00A0я"},
        {u"q\u0331w", latin, u"q\u0331ц"},      // a letter with a mark is another character
        {u"\u0438\u0306", cyrillic, u"q"},      // decomposed й
        {u"\u212A\u037E\u1FEF", latin, u"Лжё"}, // canonical twins of K ; `
    };
    for (const Case& testCase : cases) {
        EXPECT_EQ(KeyboardMapping::convert(testCase.text, testCase.from), testCase.converted)
            << toUtf8(testCase.text);
    }
    EXPECT_EQ(KeyboardMapping::converted(u"руддщ"), (ScriptConversion{u"hello", latin}));
    EXPECT_EQ(KeyboardMapping::converted(u"2024"), std::nullopt);
}

} // namespace
} // namespace kelvora
