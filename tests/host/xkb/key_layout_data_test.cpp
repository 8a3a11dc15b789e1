// SPDX-License-Identifier: MIT
#include "tests/host/xkb/keymap_fixture.h"

#include "core/mapping/system_keyboard_mapping.h"
#include "core/text/encoding.h"
#include "host/linux/xkb/key_positions.h"

#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace kelvora {
namespace {

constexpr std::uint32_t shift = translationModifier::shift;
constexpr std::uint32_t caps = translationModifier::capsLock;
constexpr std::uint32_t option = translationModifier::option;

class KeyLayoutDataTest : public testing::Test {
protected:
    XkbContextPtr context_ = makeQuietContext();
    XkbComposeTablePtr compose_ = loadComposeTable(context_.get(), "en_US.UTF-8");

    KeyLayoutData data(const std::string& layout, const std::string& variant = "") {
        const XkbKeymapPtr keymap = compileKeymap(context_.get(), layout, variant);
        return keymap ? makeKeyLayoutData(keymap.get(), 0, compose_.get()) : nullptr;
    }
};

struct KeyCase {
    const char* layout;
    const char* variant;
    const char* keyName;
    std::uint32_t modifiers;
    std::u16string text;
};

// What is printed on the keys of each layout's boards, and what Caps Lock makes of them.
const KeyCase keyCases[] = {
    {"us", "", "AC01", 0, u"a"},
    {"us", "", "AC01", shift, u"A"},
    {"us", "", "AC01", caps, u"A"},
    {"us", "", "AC01", shift | caps, u"a"},
    {"us", "", "AE02", shift, u"@"},
    {"us", "", "AE02", caps, u"2"},
    {"us", "", "AC01", option, u""}, // the right Alt is Alt there
    {"us", "", "SPCE", 0, u" "},
    {"us", "dvorak", "AD01", 0, u"'"},
    {"us", "dvorak", "AB10", 0, u"z"},
    {"us", "intl", "AC11", 0, u"\u00B4"},
    {"us", "intl", "AC11", shift, u"\u00A8"},
    {"us", "intl", "TLDE", 0, u"`"},
    {"us", "intl", "TLDE", shift, u"~"},
    {"us", "intl", "AE06", shift, u"^"},
    {"ru", "", "AC01", 0, u"ф"},
    {"ru", "", "TLDE", shift | caps, u"ё"},
    {"ru", "", "AE03", shift, u"№"},
    {"ru", "", "AE08", option, u""}, // so is it there, and the rouble sign out of reach
    {"ru", "phonetic", "AC01", 0, u"а"},
    {"ua", "", "AB02", 0, u"ч"},
    {"ua", "", "AC02", 0, u"і"},
    {"ua", "", "AD12", 0, u"ї"},
    {"de", "", "AD06", 0, u"z"},
    {"de", "", "AC10", shift, u"Ö"},
    {"de", "", "AC10", caps, u"Ö"},
    {"de", "", "AE11", 0, u"ß"},
    {"de", "", "AD01", option, u"@"},
    {"de", "", "AE12", 0, u"\u00B4"},
    {"de", "", "TLDE", 0, u"^"},
    {"de", "neo", "AC01", 0, u"u"},
    {"de", "neo", "AC01", option, u"\\"},
    {"fr", "", "AD01", 0, u"a"},
    {"fr", "", "AE01", 0, u"&"},
    {"fr", "", "AE01", shift, u"1"},
    {"fr", "", "AD11", 0, u"^"},
    {"fr", "", "AE02", option, u"~"},
    {"fr", "bepo", "AD01", 0, u"b"},
    {"fr", "bepo", "AB04", 0, u"."},
    {"fr", "bepo", "AD06", 0, u"^"},
    {"gb", "", "AE03", shift, u"£"},
    {"gr", "", "AC01", 0, u"α"},
    {"gr", "", "AC01", caps, u"Α"},
    {"gr", "", "AC10", 0, u"\u00B4"},
    {"il", "", "AC01", 0, u"ש"},
    {"ara", "", "AB05", 0, u"لا"},
    {"ara", "", "AC05", shift, u"لأ"},
    {"ara", "", "AC01", 0, u"ش"},
    {"jp", "", "AD11", 0, u"@"},
    {"jp", "", "AE13", 0, u"\\"},
    {"jp", "", "AE13", shift, u"|"},
    {"jp", "", "AB11", shift, u"_"},
};

TEST_F(KeyLayoutDataTest, hasWhatTheKeysType) {
    for (const KeyCase& c : keyCases) {
        const KeyLayoutData layout = data(c.layout, c.variant);
        ASSERT_TRUE(layout);
        EXPECT_EQ(toUtf8(typedText(layout, *keyCodeForKeyName(c.keyName), c.modifiers)),
                  toUtf8(c.text))
            << c.layout << '(' << c.variant << ") " << c.keyName << ' ' << c.modifiers;
    }
}

TEST_F(KeyLayoutDataTest, isoKeyIsKeptOnlyWhereItTypesSomethingOfItsOwn) {
    struct {
        const char* layout;
        std::u16string plain, shifted;
    } const cases[] = {
        {"us", u"", u""},   {"us,de", u"", u""}, {"de", u"<", u">"},
        {"fr", u"<", u">"}, {"gb", u"\\", u"|"}, {"ru", u"/", u"|"},
    };
    for (const auto& c : cases) {
        const KeyLayoutData layout = data(c.layout);
        EXPECT_EQ(typedText(layout, keyCode::isoSection, 0), c.plain) << c.layout;
        EXPECT_EQ(typedText(layout, keyCode::isoSection, shift), c.shifted) << c.layout;
        EXPECT_EQ(typedText(layout, keyCode::isoSection, caps), c.plain) << c.layout;
    }
}

TEST_F(KeyLayoutDataTest, eachGroupHasItsOwnTable) {
    const XkbKeymapPtr keymap = compileKeymap(context_.get(), "us,de,ru", ",,phonetic");
    const auto group = [&](xkb_layout_index_t index) {
        return makeKeyLayoutData(keymap.get(), index, compose_.get());
    };
    EXPECT_EQ(typedText(group(0), 16, 0), u"y");
    EXPECT_EQ(typedText(group(1), 16, 0), u"z");
    EXPECT_EQ(typedText(group(2), 16, 0), u"ы");
    EXPECT_EQ(typedText(group(0), 12, option), u"");
    EXPECT_EQ(typedText(group(1), 12, option), u"@");
}

TEST_F(KeyLayoutDataTest, levelThreeKeyMayBeMovedByAnOption) {
    const XkbKeymapPtr keymap =
        compileKeymap(context_.get(), "us", "altgr-intl", "lv3:caps_switch");
    EXPECT_EQ(typedText(makeKeyLayoutData(keymap.get(), 0, nullptr), keyCode::a, option), u"á");
    const XkbKeymapPtr russian = compileKeymap(context_.get(), "ru", "", "lv3:ralt_switch");
    EXPECT_EQ(typedText(makeKeyLayoutData(russian.get(), 0, nullptr), 28, option), u"\u20BD");
}

TEST_F(KeyLayoutDataTest, deadKeysHaveTheirSpacingCharacterWithoutComposeTableToo) {
    const XkbKeymapPtr keymap = compileKeymap(context_.get(), "us", "intl");
    const KeyLayoutData layout = makeKeyLayoutData(keymap.get(), 0, nullptr);
    EXPECT_EQ(typedText(layout, 39, 0), u"\u00B4");
    EXPECT_EQ(typedText(layout, 39, shift), u"\u00A8");
    EXPECT_EQ(typedText(layout, 22, shift), u"^");
}

TEST_F(KeyLayoutDataTest, localesWithoutUsableComposeTableGetTheCommonOne) {
    for (const char* locale : {"C", "POSIX", "", "de_DE.ISO-8859-1", "xx_XX.UTF-8", "C.UTF-8"}) {
        const XkbComposeTablePtr table = loadComposeTable(context_.get(), locale);
        ASSERT_TRUE(table) << locale;
        EXPECT_EQ(KeysymText(table.get())(xkb_keysym_from_name("UFEFB", XKB_KEYSYM_NO_FLAGS)),
                  u"لا")
            << locale;
    }
}

TEST_F(KeyLayoutDataTest, translationsOutsideTheTableAreRefused) {
    const KeyLayoutData layout = data("us");
    const auto translate = [&](KeyCode key, std::uint32_t modifiers) {
        std::array<char16_t, 4> text{};
        return KeyLayoutReader().translate(*layout, key, modifiers, 0, text);
    };
    for (const KeyCode key : {KeyCode{51}, KeyCode{92}, KeyCode{95}, keyCode::unknown})
        EXPECT_EQ(translate(key, 0), -1) << key;
    for (const std::uint32_t modifiers : {1u, 0x10u, 0x200u, 0x80000002u, 0xFFFFFFFFu})
        EXPECT_EQ(translate(keyCode::a, modifiers), -1) << modifiers;
}

TEST_F(KeyLayoutDataTest, shortOutputIsNotOverrun) {
    const KeyLayoutData layout = data("ara");
    std::array<char16_t, 2> text{u'-', u'-'};
    EXPECT_EQ(KeyLayoutReader().translate(*layout, 11, 0, 0, std::span(text).first(1)), 2);
    EXPECT_EQ(text[0], u'ل');
    EXPECT_EQ(text[1], u'-');
    EXPECT_EQ(KeyLayoutReader().translate(*layout, 11, 0, 0, {}), 2);
}

/// Asks for everything the bytes could be asked for; the sanitizers and the guard see an overrun.
void readEverything(const std::vector<std::byte>& bytes) {
    // An exact copy on the heap, so that reading one byte beyond it is an error.
    const auto copy = std::make_unique<std::byte[]>(bytes.size());
    std::copy(bytes.begin(), bytes.end(), copy.get());
    for (KeyCode key = 0; key < 100; ++key) {
        for (std::uint32_t modifiers = 0; modifiers < 16; ++modifiers) {
            std::array<char16_t, 9> text{};
            const auto length = KeyLayoutReader().translate({copy.get(), bytes.size()}, key,
                                                            modifiers, 0, std::span(text).first(8));
            ASSERT_GE(length, -1);
            ASSERT_LE(length, 0xFFFF);
            ASSERT_EQ(text[8], u'\0');
        }
    }
}

TEST_F(KeyLayoutDataTest, damagedBytesAreHarmless) {
    const std::vector<std::byte> good = *data("de");
    std::array<char16_t, 4> text{};
    for (std::size_t size = 0; size < good.size(); size += size < 20 ? 1 : 97) {
        const std::vector<std::byte> cut(good.begin(),
                                         good.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_EQ(KeyLayoutReader().translate(cut, 0, 0, 0, text), -1) << size;
    }
    std::mt19937 random(7);
    for (int round = 0; round < 200; ++round) {
        std::vector<std::byte> bytes = good;
        for (int change = 0; change < 20; ++change)
            bytes[random() % bytes.size()] = static_cast<std::byte>(random());
        readEverything(bytes);
        std::vector<std::byte> noise(random() % 4000);
        for (std::byte& byte : noise)
            byte = static_cast<std::byte>(random());
        readEverything(noise);
    }
    std::vector<std::byte> hostile = good; // every offset and length as large as they go
    std::fill(hostile.begin() + 6, hostile.begin() + 6 + 8 * 53 * 4, std::byte{0xFF});
    EXPECT_EQ(KeyLayoutReader().translate(hostile, 0, 0, 0, text), -1);
    readEverything(hostile);
}

TEST(KeyboardType, modelsTellTheShape) {
    const KeyLayoutReader reader;
    struct {
        const char* model;
        PhysicalLayoutType type;
    } const cases[] = {
        {"pc105", PhysicalLayoutType::iso},    {"pc104", PhysicalLayoutType::ansi},
        {"pc101", PhysicalLayoutType::ansi},   {"pc86", PhysicalLayoutType::ansi},
        {"jp106", PhysicalLayoutType::jis},    {"sun_type6_jp", PhysicalLayoutType::jis},
        {"thinkpad", PhysicalLayoutType::iso}, {"", PhysicalLayoutType::iso},
    };
    for (const auto& c : cases)
        EXPECT_EQ(reader.layoutType(keyboardTypeForModel(c.model)), c.type) << c.model;
    EXPECT_EQ(reader.layoutType(keyboardTypeCode::unknown), PhysicalLayoutType::ansi);
    EXPECT_EQ(reader.layoutType(0xFFFFFFFF), PhysicalLayoutType::ansi);
}

TEST(KeyPositions, eachCodeHasOneNameThatLeadsBack) {
    for (KeyCode code = 0; code < 200; ++code) {
        if (const auto name = keyNameForKeyCode(code))
            EXPECT_EQ(keyCodeForKeyName(*name), code) << *name;
        else
            EXPECT_TRUE(code > 50 && code != 93 && code != 94) << code;
    }
    EXPECT_EQ(keyNameForKeyCode(42), "BKSL");
    EXPECT_EQ(keyCodeForKeyName("AC12"), KeyCode{42});
    EXPECT_FALSE(keyCodeForKeyName(""));
    EXPECT_FALSE(keyCodeForKeyName("AC1"));
}

} // namespace
} // namespace kelvora
