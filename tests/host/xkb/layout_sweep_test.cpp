// SPDX-License-Identifier: MIT
#include "core/mapping/system_keyboard_mapping.h"
#include "core/text/encoding.h"
#include "tests/host/xkb/keymap_fixture.h"

#include <gtest/gtest.h>
#include <map>
#include <string>
#include <string_view>
#include <vector>
#include <xkbcommon/xkbregistry.h>

namespace kelvora {
namespace {

std::vector<std::pair<std::string, std::string>> allLayouts() {
    rxkb_context* const registry = rxkb_context_new(RXKB_CONTEXT_NO_FLAGS);
    EXPECT_TRUE(rxkb_context_parse_default_ruleset(registry));
    std::vector<std::pair<std::string, std::string>> layouts;
    for (rxkb_layout* layout = rxkb_layout_first(registry); layout != nullptr;
         layout = rxkb_layout_next(layout)) {
        const char* variant = rxkb_layout_get_variant(layout);
        // "custom" is listed for users who write a file of that name.
        if (std::string_view(rxkb_layout_get_name(layout)) != "custom")
            layouts.emplace_back(rxkb_layout_get_name(layout), variant != nullptr ? variant : "");
    }
    rxkb_context_unref(registry);
    return layouts;
}

// Every layout that a user can choose, paired with `us`: whatever a key types in one is converted
// to what it types in the other, unless an earlier key types the same text or a number is involved.
TEST(LayoutSweep, everyLayoutConvertsKeyByKeyBothWays) {
    const XkbContextPtr context = makeQuietContext();
    const XkbComposeTablePtr compose = loadComposeTable(context.get(), "en_US.UTF-8");
    const KeyLayoutReader reader;
    const auto listed = allLayouts();
    ASSERT_GT(listed.size(), 100u);
    std::size_t paired = 0;
    for (const auto& [layout, variant] : listed) {
        SCOPED_TRACE(layout + '(' + variant + ')');
        const XkbKeymapPtr keymap = compileKeymap(context.get(), "us," + layout, ',' + variant);
        ASSERT_TRUE(keymap);
        const KeyLayoutData us = makeKeyLayoutData(keymap.get(), 0, compose.get());
        const KeyLayoutData other = makeKeyLayoutData(keymap.get(), 1, compose.get());
        const auto pairs = SystemKeyboardMapping::pairs(reader, *us, *other, keyboardTypeCode::iso);
        const PhysicalLayoutMapping mapping(pairs);
        std::map<std::u16string, std::u16string> firsts[2];
        for (const PhysicalKeyPair& pair : pairs) {
            firsts[0].try_emplace(pair.first, pair.second);
            firsts[1].try_emplace(pair.second, pair.first);
        }
        for (const int source : {0, 1}) {
            for (const auto& [typed, meant] : firsts[source]) {
                const std::u16string converted = mapping.convert(typed, source);
                EXPECT_TRUE(converted == meant || converted == typed) << toUtf8(typed);
            }
        }
        paired += pairs.size() >= 40 ? 1U : 0U;
    }
    // A few symbol-only and empty custom layouts type hardly anything.
    EXPECT_GT(paired * 100, listed.size() * 95);
}

} // namespace
} // namespace kelvora
