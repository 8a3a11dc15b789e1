// SPDX-License-Identifier: MIT
#include "host/linux/xkb/layout_names.h"

#include "tests/host/xkb/keymap_fixture.h"

#include <gtest/gtest.h>
#include <random>

namespace kelvora {
namespace {

using namespace std::string_literals;

TEST(RulesNames, areReadFromTheProperty) {
    const RulesNames names = parseRulesNames("evdev\0pc105\0us,ru,de\0,phonetic\0grp:toggle\0"s);
    EXPECT_EQ(names.model, "pc105");
    const std::vector<LayoutAndVariant> expected{{"us", ""}, {"ru", "phonetic"}, {"de", ""}};
    EXPECT_EQ(names.layouts, expected);
    EXPECT_EQ(layoutId(names.layouts[0]), "us");
    EXPECT_EQ(layoutId(names.layouts[1]), "ru(phonetic)");
}

TEST(RulesNames, malformedPropertiesNameNothing) {
    const std::string cases[] = {
        "",
        "evdev",
        "\0\0\0\0\0"s,
        "evdev\0pc105"s,
        "evdev\0pc105\0us,\xFF\xFE\0\0"s,
        "evdev\0pc105\0us,ru\0,\x80\0"s,
        "evdev\0pc105\0us,,ru\0\0"s,
        "evdev\0pc105\0us, ru\n\0\0"s,
        "evdev\0pc105\0"s + std::string(5000, ','),
        std::string(5000, '\0'),
    };
    for (const std::string& property : cases)
        EXPECT_TRUE(parseRulesNames(property).layouts.empty()) << property;
    std::mt19937 random(3);
    for (int round = 0; round < 2000; ++round) {
        std::string noise(random() % 40, ' ');
        for (char& unit : noise)
            unit = ",\0us\xC3"[random() % 5];
        for (const LayoutAndVariant& layout : parseRulesNames(noise).layouts)
            EXPECT_FALSE(layoutId(layout).empty());
    }
}

TEST(LayoutNames, comeFromTheRulesWhenTheseDescribeTheKeymap) {
    const XkbContextPtr context = makeQuietContext();
    LayoutRegistry registry;
    struct Case {
        const char* what;
        std::string property, layouts, variants;
        std::vector<LayoutName> expected;
    };
    const Case cases[] = {
        {"layouts and variants",
         "evdev\0pc105\0us,ru\0,phonetic\0\0"s,
         "us,ru",
         ",phonetic",
         {{"us", "English (US)"}, {"ru(phonetic)", "Russian (phonetic)"}}},
        {"unknown to the registry: the keymap's own name is shown",
         "evdev\0pc105\0mine\0\0\0"s,
         "de",
         "",
         {{"mine", "German"}}},
        {"another number of groups: loaded from elsewhere",
         "evdev\0pc105\0us\0\0\0"s,
         "us,ru",
         "",
         {{"us", "English (US)"}, {"ru", "Russian"}}},
        {"no property", "", "fr", "bepo", {{"fr(bepo)", "French (BEPO)"}}},
        {"more layouts in the property than groups that XKB has",
         "evdev\0pc105\0us,ru,de,fr,es\0\0\0"s,
         "us,ru,de,fr",
         "",
         {{"us", "English (US)"}, {"ru", "Russian"}, {"de", "German"}, {"fr", "French"}}},
    };
    for (const Case& c : cases) {
        const XkbKeymapPtr keymap = compileKeymap(context.get(), c.layouts, c.variants);
        ASSERT_TRUE(keymap) << c.what;
        EXPECT_EQ(layoutNames(parseRulesNames(c.property), keymap.get(), registry), c.expected)
            << c.what;
    }
}

TEST(LayoutNames, aGroupWithoutAnyNameHasNoIdentifier) {
    const XkbContextPtr context = makeQuietContext();
    const XkbKeymapPtr keymap(xkb_keymap_new_from_string(
        context.get(),
        "xkb_keymap { xkb_keycodes { <AC01> = 38; }; xkb_types { include \"basic\" };"
        "xkb_compat { include \"basic\" };"
        "xkb_symbols { key <AC01> { [ a, A ], [ Cyrillic_ef, Cyrillic_EF ] }; }; };",
        XKB_KEYMAP_FORMAT_TEXT_V1, XKB_KEYMAP_COMPILE_NO_FLAGS));
    ASSERT_TRUE(keymap);
    LayoutRegistry registry;
    const auto names = layoutNames({}, keymap.get(), registry);
    ASSERT_EQ(names.size(), 2u);
    EXPECT_FALSE(names[0].id);
    EXPECT_FALSE(names[1].id);
}

} // namespace
} // namespace kelvora
