// SPDX-License-Identifier: MIT
#include "core/trigger/typed_text_buffer.h"

#include <gtest/gtest.h>
#include <string>
#include <thread>

namespace kelvora {
namespace {

TEST(TypedTextBuffer, recordsOrEmpties) {
    const struct {
        const char* name;
        std::u16string text;
        bool isRecorded;
    } cases[] = {
        {"plain spaces between letters", u" x \U0001F600", true},
        {"letter with a mark", u"e\u0301", true},
        {"nothing", u"", false},
        {"tab", u"\t", false},
        {"no-break space", u"\u00A0", false},
        {"space that carries a mark", u" \u0301", false},
        {"delete", u"\x7F", false},
        {"joiner inside an emoji", u"\U0001F468\u200D\U0001F469", false},
        {"supplementary tag", u"\U000E0041", false},
        {"control after letters", u"ab\x1B", false},
    };
    for (const auto& [name, text, isRecorded] : cases) {
        TypedTextBuffer buffer;
        ASSERT_TRUE(buffer.record(u"ab"));
        EXPECT_EQ(buffer.record(text), isRecorded) << name;
        EXPECT_EQ(buffer.text(), isRecorded ? u"ab" + text : u"") << name;
    }
}

TEST(TypedTextBuffer, keepsTheNewestCharacters) {
    std::u16string faces; // characters count, not units
    for (int i = 0; i < 199; ++i)
        faces += u"\U0001F600";
    TypedTextBuffer buffer;
    buffer.record(u"xyz");
    buffer.record(faces);
    EXPECT_EQ(buffer.text(), u"z" + faces);
    buffer.record(u"a" + faces + u"bc");
    EXPECT_EQ(buffer.text(), faces.substr(2) + u"bc");
}

TEST(TypedTextBuffer, deletesCharactersAsRecorded) {
    TypedTextBuffer buffer;
    buffer.deleteBackward();
    buffer.record(u"abe\u0301");
    buffer.deleteBackward();
    EXPECT_EQ(buffer.text(), u"ab");

    // Two keystrokes stay two characters, though they now look like one.
    buffer.record(u"e");
    buffer.record(u"\u0301");
    buffer.deleteBackward();
    EXPECT_EQ(buffer.text(), u"abe");
}

TEST(TypedTextBuffer, replacesOnlyWhatIsExpected) {
    const std::u16string longText(300, u'\n');
    const struct {
        const char* name;
        std::u16string expected, replacement, after;
    } cases[] = {
        {"canonically equal text", u"cafe\u0301", u"b", u"b"},
        {"prefix", u"caf", u"b", u"caf\u00E9"},
        {"without the mark", u"cafe", u"b", u"caf\u00E9"},
        {"by nothing", u"caf\u00E9", u"", u""},
        {"unchecked length and content", u"caf\u00E9", longText, longText},
    };
    for (const auto& [name, expected, replacement, after] : cases) {
        TypedTextBuffer buffer;
        buffer.record(u"caf\u00E9");
        buffer.replace(expected, replacement);
        EXPECT_EQ(buffer.text(), after) << name;
        buffer.record(u"a");
        EXPECT_EQ(buffer.text(), (after.size() > 200 ? after.substr(101) : after) + u"a") << name;
    }
}

TEST(TypedTextBuffer, replaceLosesNoKeystrokeOfAnotherThread) {
    TypedTextBuffer buffer;
    constexpr int keystrokes = 150;
    std::thread typist([&] {
        for (int i = 0; i < keystrokes; ++i)
            buffer.record(u"k");
    });
    for (int i = 0; i < 1000; ++i) {
        // Turns every letter into another one, and so keeps their number.
        const std::u16string seen = buffer.text();
        buffer.replace(seen, std::u16string(seen.size(), i % 2 == 0 ? u'a' : u'b'));
    }
    typist.join();
    EXPECT_EQ(buffer.text().size(), keystrokes);
}

} // namespace
} // namespace kelvora
