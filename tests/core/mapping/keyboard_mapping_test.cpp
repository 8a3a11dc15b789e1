// SPDX-License-Identifier: MIT
#include "core/mapping/keyboard_mapping.h"

#include "core/text/encoding.h"

#include <gtest/gtest.h>
#include <string>

namespace kelvora {
namespace {

using enum KeyboardScript;

TEST(KeyboardMapping, convertsWholeCharactersOfTheScriptWithMoreLetters) {
    const struct {
        std::u16string text;
        std::optional<KeyboardScript> script;
        std::u16string converted; // from the script, or from Latin letters
    } cases[] = {
        {u"Ghb<tn,", latin, u"ПриБетб"},
        {u"Руддщ", cyrillic, u"Hello"},
        {u"аб.", cyrillic, u"f,/"},
        {u"aвг", cyrillic, u"adu"},
        {u"abвг", latin, u"фивг"},
        {u"7 é\u00A0яя", cyrillic, u"7 é\u00A0zz"},
        {u"\u03FF\u0400a\u052F\u0530", cyrillic, u"\u03FF\u0400a\u052F\u0530"},
        {u"@{", {}, u"@Х"},
        {u"q\u0331w", latin, u"q\u0331ц"},   // a letter with a mark is another character
        {u"\u0438\u0306", cyrillic, u"q"},   // decomposed й
        {u"\u212A\u037E\u1FEF", {}, u"Лжё"}, // canonical twins of K ; `
    };
    for (const auto& [text, script, converted] : cases) {
        EXPECT_EQ(KeyboardMapping::detectedScript(text), script) << toUtf8(text);
        EXPECT_EQ(KeyboardMapping::convert(text, script.value_or(latin)), converted)
            << toUtf8(text);
    }
    EXPECT_EQ(KeyboardMapping::converted(u"руддщ"), (ScriptConversion{u"hello", latin}));
    EXPECT_EQ(KeyboardMapping::converted(u"2024"), std::nullopt);
}

} // namespace
} // namespace kelvora
