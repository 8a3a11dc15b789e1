// SPDX-License-Identifier: MIT
#pragma once

#include <xkbcommon/xkbcommon-compose.h>
#include <xkbcommon/xkbcommon.h>

#include <memory>

namespace kelvora {

struct XkbContextDeleter {
    void operator()(xkb_context* context) const { xkb_context_unref(context); }
};
struct XkbKeymapDeleter {
    void operator()(xkb_keymap* keymap) const { xkb_keymap_unref(keymap); }
};
struct XkbStateDeleter {
    void operator()(xkb_state* state) const { xkb_state_unref(state); }
};
struct XkbComposeTableDeleter {
    void operator()(xkb_compose_table* table) const { xkb_compose_table_unref(table); }
};
struct XkbComposeStateDeleter {
    void operator()(xkb_compose_state* state) const { xkb_compose_state_unref(state); }
};

using XkbContextPtr = std::unique_ptr<xkb_context, XkbContextDeleter>;
using XkbKeymapPtr = std::unique_ptr<xkb_keymap, XkbKeymapDeleter>;
using XkbStatePtr = std::unique_ptr<xkb_state, XkbStateDeleter>;
using XkbComposeTablePtr = std::unique_ptr<xkb_compose_table, XkbComposeTableDeleter>;
using XkbComposeStatePtr = std::unique_ptr<xkb_compose_state, XkbComposeStateDeleter>;

} // namespace kelvora
