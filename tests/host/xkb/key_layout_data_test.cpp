// SPDX-License-Identifier: MIT
#include "tests/host/xkb/keymap_fixture.h"

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

    KeyLayoutData data(const char* layouts, const char* variants = "", const char* options = "",
                       xkb_layout_index_t group = 0) {
        const XkbKeymapPtr keymap = compileKeymap(context_.get(), layouts, variants, options);
        return keymap ? makeKeyLayoutData(keymap.get(), group, compose_.get()) : nullptr;
    }
};

TEST_F(KeyLayoutDataTest, hasWhatTheKeysType) {
    struct {
        const char *layouts, *variants, *keyName;
        std::uint32_t modifiers;
        std::u16string text;
        const char* options = "";
        xkb_layout_index_t group = 0;
    } const cases[] = {
        {"us", "", "AC01", shift | caps, u"a"},
        {"us", "", "AE02", caps, u"2"},
        {"us", "", "AC01", option, u""}, // the right Alt is Alt there
        {"us", "", "SPCE", 0, u" "},
        {"us", "intl", "AC11", 0, u"\u00B4"}, // dead keys
        {"us", "intl", "AC11", shift, u"\u00A8"},
        {"us", "intl", "AE06", shift, u"^"},
        {"us", "intl", "TLDE", shift, u"~"},
        {"us", "altgr-intl", "AC01", option, u"á", "lv3:caps_switch"},
        {"ru", "", "TLDE", shift | caps, u"ё"},
        {"ru", "", "AE08", option, u""},
        {"ru", "", "AE08", option, u"\u20BD", "lv3:ralt_switch"},
        {"de", "", "AC10", caps, u"Ö"},
        {"de", "neo", "AC01", option, u"\\"},
        {"us,de,ru", ",,phonetic", "AD01", option, u"", "", 0},
        {"us,de,ru", ",,phonetic", "AD01", option, u"@", "", 1},
        {"us,de,ru", ",,phonetic", "AD06", 0, u"ы", "", 2},
        {"ara", "", "AB05", 0, u"لا"}, // two characters
        {"jp", "", "AE13", 0, u"\\"},
        {"jp", "", "AB11", shift, u"_"},
        // The ISO key has something of its own, or nothing.
        {"us", "", "LSGT", 0, u""},
        {"us", "", "LSGT", shift, u""},
        {"us,de", "", "LSGT", caps, u""},
        {"de", "", "LSGT", shift, u">"},
        {"gb", "", "LSGT", 0, u"\\"},
        {"ru", "", "LSGT", caps, u"/"},
    };
    for (const auto& c : cases) {
        const KeyLayoutData layout = data(c.layouts, c.variants, c.options, c.group);
        ASSERT_TRUE(layout);
        EXPECT_EQ(toUtf8(typedText(layout, *keyCodeForKeyName(c.keyName), c.modifiers)),
                  toUtf8(c.text))
            << c.layouts << '(' << c.variants << ") " << c.keyName << ' ' << c.modifiers;
    }
    compose_.reset();
    EXPECT_EQ(typedText(data("us", "intl"), 39, 0), u"\u00B4") << "without a Compose table";
}

TEST_F(KeyLayoutDataTest, localesWithoutUsableComposeTableGetTheCommonOne) {
    for (const char* locale : {"C", "", "de_DE.ISO-8859-1", "xx_XX.UTF-8"}) {
        const XkbComposeTablePtr table = loadComposeTable(context_.get(), locale);
        ASSERT_TRUE(table) << locale;
        EXPECT_EQ(KeysymText(table.get())(xkb_keysym_from_name("UFEFB", XKB_KEYSYM_NO_FLAGS)),
                  u"لا")
            << locale;
    }
}

TEST_F(KeyLayoutDataTest, translationsOutsideTheTableAreRefused) {
    const KeyLayoutData layout = data("ara");
    std::array<char16_t, 2> text{u'-', u'-'};
    const auto translate = [&](KeyCode key, std::uint32_t modifiers) {
        return KeyLayoutReader().translate(*layout, key, modifiers, 0, std::span(text).first(1));
    };
    for (const KeyCode key : {KeyCode{51}, KeyCode{92}, KeyCode{95}, keyCode::unknown})
        EXPECT_EQ(translate(key, 0), -1) << key;
    for (const std::uint32_t modifiers : {1u, 0x10u, 0x80000002u})
        EXPECT_EQ(translate(keyCode::a, modifiers), -1) << modifiers;
    EXPECT_EQ(translate(11, 0), 2) << "longer than the output";
    EXPECT_EQ(std::u16string(text.begin(), text.end()), u"ل-");
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
    for (std::size_t size = 0; size < good.size(); size += size < 20 ? 1 : 97)
        EXPECT_EQ(KeyLayoutReader().translate(std::span(good).first(size), 0, 0, 0, text), -1);
    std::mt19937 random(7);
    for (int round = 0; round < 200; ++round) {
        std::vector<std::byte> bytes = good;
        for (int change = 0; change < 20; ++change)
            bytes[random() % bytes.size()] = static_cast<std::byte>(random());
        readEverything(bytes);
    }
    std::vector<std::byte> hostile = good; // every offset and length as large as they go
    std::fill(hostile.begin() + 6, hostile.begin() + 6 + 8 * 53 * 4, std::byte{0xFF});
    EXPECT_EQ(KeyLayoutReader().translate(hostile, 0, 0, 0, text), -1);
    readEverything(hostile);
}

TEST(KeyboardType, modelsTellTheShape) {
    const KeyLayoutReader reader;
    for (const auto& [model, type] : {std::pair{"pc105", PhysicalLayoutType::iso},
                                      {"pc104", PhysicalLayoutType::ansi},
                                      {"jp106", PhysicalLayoutType::jis},
                                      {"sun_type6_jp", PhysicalLayoutType::jis},
                                      {"", PhysicalLayoutType::iso}})
        EXPECT_EQ(reader.layoutType(keyboardTypeForModel(model)), type) << model;
    EXPECT_EQ(reader.layoutType(0xFFFFFFFF), PhysicalLayoutType::ansi);
}

TEST(KeyPositions, eachCodeHasOneNameThatLeadsBack) {
    for (KeyCode code = 0; code < 200; ++code) {
        if (const auto name = keyNameForKeyCode(code))
            EXPECT_EQ(keyCodeForKeyName(*name), code) << *name;
        else
            EXPECT_TRUE(code > 50 && code != 93 && code != 94) << code;
    }
    EXPECT_EQ(keyCodeForKeyName("AC12"), KeyCode{42});
    EXPECT_FALSE(keyCodeForKeyName("AC1"));
}

} // namespace
} // namespace kelvora
