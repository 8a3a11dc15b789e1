// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/xkb/handles.h"
#include "host/linux/xkb/key_layout_data.h"
#include "host/linux/xkb/keysym_text.h"

#include <string>

namespace kelvora {

inline XkbContextPtr makeQuietContext() {
    XkbContextPtr context(xkb_context_new(XKB_CONTEXT_NO_FLAGS));
    xkb_context_set_log_level(context.get(), XKB_LOG_LEVEL_CRITICAL);
    return context;
}

/// "us,de" with variants ",neo", as setxkbmap takes them. Null when they do not compile.
inline XkbKeymapPtr compileKeymap(xkb_context* context, const std::string& layouts,
                                  const std::string& variants = "",
                                  const std::string& options = "") {
    const xkb_rule_names names{"evdev", "pc105", layouts.c_str(), variants.c_str(),
                               options.c_str()};
    return XkbKeymapPtr(xkb_keymap_new_from_names(context, &names, XKB_KEYMAP_COMPILE_NO_FLAGS));
}

} // namespace kelvora
