// SPDX-License-Identifier: MIT
#include "tests/host/xkb/keymap_fixture.h"

#include "core/text/encoding.h"
#include "host/linux/xkb/key_positions.h"

#include <gtest/gtest.h>

#include <array>

namespace kelvora {
namespace {

constexpr std::uint32_t shift = translationModifier::shift;
constexpr std::uint32_t caps = translationModifier::capsLock;
constexpr std::uint32_t option = translationModifier::option;

TEST(KeyLayoutData, HasWhatTheKeysType) {
    const struct {
        const char *layouts, *variants, *keyName;
        std::uint32_t modifiers;
        std::u16string text;
        const char* options = "";
        xkb_layout_index_t group = 0;
        const char* locale = "en_US.UTF-8";
    } cases[] = {
        {"us", "", "AC01", shift | caps, u"a"},
        {"us", "", "AC01", option, u""},      // the right Alt is Alt there
        {"us", "intl", "AC11", 0, u"\u00B4"}, // dead keys
        {"us", "intl", "AE06", shift, u"^"},
        {"us", "altgr-intl", "AC01", option, u"á", "lv3:caps_switch"},
        {"ru", "", "AE08", option, u"\u20BD", "lv3:ralt_switch"},
        {"de", "neo", "AC01", option, u"\\"},
        {"us,de,ru", ",,phonetic", "AD01", option, u"@", "", 1},
        {"us,de,ru", ",,phonetic", "AD06", 0, u"ы", "", 2},
        // The ISO key has something of its own, or nothing.
        {"us,de", "", "LSGT", caps, u""},
        {"gb", "", "LSGT", 0, u"\\"},
        // One key, two characters; in locales without a usable Compose table, too.
        {"ara", "", "AB05", 0, u"لا"},
        {"ara", "", "AB05", 0, u"لا", "", 0, "C"},
    };
    const XkbContextPtr context = makeQuietContext();
    for (const auto& c : cases) {
        const auto keymap = compileKeymap(context.get(), c.layouts, c.variants, c.options);
        const auto compose = loadComposeTable(context.get(), c.locale);
        const KeyLayoutData layout = makeKeyLayoutData(keymap.get(), c.group, compose.get());
        ASSERT_TRUE(layout);
        std::array<char16_t, 16> text{};
        const auto length = KeyLayoutReader().translate(*layout, *keyCodeForKeyName(c.keyName),
                                                        c.modifiers, keyboardTypeCode::iso, text);
        ASSERT_GE(length, 0) << c.keyName;
        EXPECT_EQ(toUtf8({text.data(), static_cast<std::size_t>(length)}), toUtf8(c.text))
            << c.layouts << '(' << c.variants << ") " << c.keyName << ' ' << c.modifiers;
    }
}

} // namespace
} // namespace kelvora
