// SPDX-License-Identifier: MIT
#include "host/linux/xkb/layout_names.h"

#include "tests/host/xkb/keymap_fixture.h"

#include <gtest/gtest.h>

namespace kelvora {
namespace {

using namespace std::string_literals;

TEST(RulesNames, malformedPropertiesNameNothing) {
    const std::string cases[] = {
        "",
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
}

TEST(LayoutNames, comeFromTheRulesWhenTheseDescribeTheKeymap) {
    const XkbContextPtr context = makeQuietContext();
    LayoutRegistry registry;
    struct {
        const char* what;
        std::string property;
        const char *layouts, *variants, *expected;
    } const cases[] = {
        {"variants", "evdev\0pc105\0us,ru\0,phonetic\0\0"s, "us,ru", ",phonetic",
         "us=English (US) ru(phonetic)=Russian (phonetic) "},
        {"unknown to the registry", "evdev\0pc105\0mine\0\0\0"s, "de", "", "mine=German "},
        {"another keymap", "evdev\0pc105\0us\0\0\0"s, "us,ru", "", "us=English (US) ru=Russian "},
        {"no property", "", "fr", "bepo", "fr(bepo)=French (BEPO) "},
        {"more layouts than XKB has groups", "evdev\0pc105\0us,ru,de,fr,es\0\0\0"s, "us,ru,de,fr",
         "", "us=English (US) ru=Russian de=German fr=French "},
    };
    for (const auto& c : cases) {
        const XkbKeymapPtr keymap = compileKeymap(context.get(), c.layouts, c.variants);
        ASSERT_TRUE(keymap) << c.what;
        std::string names;
        for (const auto& [id, name] :
             layoutNames(parseRulesNames(c.property), keymap.get(), registry))
            names += id.value_or("?") + "=" + name + " ";
        EXPECT_EQ(names, c.expected) << c.what;
    }
}

TEST(LayoutNames, aKeymapThatSomebodyWroteHasItsOwnNames) {
    const XkbContextPtr context = makeQuietContext();
    const XkbKeymapPtr keymap(xkb_keymap_new_from_string(
        context.get(),
        "xkb_keymap { xkb_keycodes { <AC01> = 38; }; xkb_types { include \"basic\" };"
        "xkb_compat { include \"basic\" }; xkb_symbols { name[Group1] = \"My Russian\";"
        "key <AC01> { [ a, A ], [ Cyrillic_ef, Cyrillic_EF ] }; }; };",
        XKB_KEYMAP_FORMAT_TEXT_V1, XKB_KEYMAP_COMPILE_NO_FLAGS));
    ASSERT_TRUE(keymap);
    LayoutRegistry registry;
    const auto names = layoutNames({}, keymap.get(), registry);
    ASSERT_EQ(names.size(), 2u);
    EXPECT_EQ(names[0].id, "My Russian");
    EXPECT_FALSE(names[1].id) << "a group without a name";
}

} // namespace
} // namespace kelvora
