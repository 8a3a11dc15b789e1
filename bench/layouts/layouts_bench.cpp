// SPDX-License-Identifier: MIT
// The mapping of two real layouts, as each conversion makes it anew, and their key-layout data,
// made once per change of the keymap.
#include "core/mapping/system_keyboard_mapping.h"
#include "host/linux/xkb/handles.h"
#include "host/linux/xkb/key_layout_data.h"
#include "host/linux/xkb/keysym_text.h"

#include <benchmark/benchmark.h>

namespace {

using namespace kelvora;

struct Layouts {
    XkbContextPtr context{xkb_context_new(XKB_CONTEXT_NO_FLAGS)};
    XkbComposeTablePtr compose = loadComposeTable(context.get());
    XkbKeymapPtr keymap;

    Layouts() {
        const xkb_rule_names names{"evdev", "pc105", "us,ru", "", ""};
        keymap.reset(xkb_keymap_new_from_names(context.get(), &names, XKB_KEYMAP_COMPILE_NO_FLAGS));
    }
    [[nodiscard]] KeyLayoutData data(xkb_layout_index_t group) const {
        return makeKeyLayoutData(keymap.get(), group, compose.get());
    }
};

void mappingFromLayoutData(benchmark::State& state) {
    const Layouts layouts;
    const KeyLayoutData first = layouts.data(0);
    const KeyLayoutData second = layouts.data(1);
    const KeyLayoutReader reader;
    for (auto _ : state)
        benchmark::DoNotOptimize(
            SystemKeyboardMapping::mapping(reader, *first, *second, keyboardTypeCode::iso));
}
BENCHMARK(mappingFromLayoutData);

void layoutDataOfOneGroup(benchmark::State& state) {
    const Layouts layouts;
    for (auto _ : state)
        benchmark::DoNotOptimize(layouts.data(1));
}
BENCHMARK(layoutDataOfOneGroup);

} // namespace
