// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/xkb/handles.h"
#include "host/linux/xkb/key_layout_data.h"
#include "host/linux/xkb/keysym_text.h"

#include <array>
#include <cstdint>
#include <string>

namespace kelvora {

inline XkbContextPtr makeQuietContext() {
    XkbContextPtr context(xkb_context_new(XKB_CONTEXT_NO_FLAGS));
    xkb_context_set_log_level(context.get(), XKB_LOG_LEVEL_CRITICAL);
    return context;
}

/// "us,de" with variants ",neo", as setxkbmap takes them. Null when they do not compile.
inline XkbKeymapPtr compileKeymap(xkb_context* context, const std::string& layouts,
                                  const std::string& variants = "", const std::string& options = "",
                                  const std::string& model = "pc105") {
    const xkb_rule_names names{"evdev", model.c_str(), layouts.c_str(), variants.c_str(),
                               options.c_str()};
    return XkbKeymapPtr(xkb_keymap_new_from_names(context, &names, XKB_KEYMAP_COMPILE_NO_FLAGS));
}

/// What the key types by its layout's data; "<none>" when it is not in the data.
inline std::u16string typedText(const KeyLayoutData& data, KeyCode key, std::uint32_t modifiers) {
    std::array<char16_t, 255> text{};
    const auto length =
        KeyLayoutReader().translate(*data, key, modifiers, keyboardTypeCode::iso, text);
    return length < 0 ? u"<none>" : std::u16string(text.data(), static_cast<std::size_t>(length));
}

} // namespace kelvora
