// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/xkb/handles.h"

#include <string>
#include <string_view>

namespace kelvora {

/// The compose table of the locale that the environment names (LC_ALL, LC_CTYPE, LANG). A locale
/// that is no UTF-8 one (C, POSIX, ISO 8859) or has no table gets that of en_US.UTF-8: toolkits
/// compose UTF-8 there too. Null when there is none at all.
[[nodiscard]] XkbComposeTablePtr loadComposeTable(xkb_context* context);

/// The same for a locale given by name.
[[nodiscard]] XkbComposeTablePtr loadComposeTable(xkb_context* context, const std::string& locale);

/// What single keysyms type when no compose sequence is to start. One thread.
class KeysymText {
public:
    /// `composeTable` is referenced; null: dead keys go by a table of their own.
    explicit KeysymText(xkb_compose_table* composeTable);

    /// UTF-16, well-formed. A dead key gives its spacing character; a keysym with a compose
    /// sequence of its own (Arabic lam-alef) gives the whole of it. Empty for keysyms that type
    /// nothing.
    [[nodiscard]] std::u16string operator()(xkb_keysym_t keysym) const;

private:
    [[nodiscard]] std::u16string composed(xkb_keysym_t first, xkb_keysym_t second) const;

    XkbComposeStatePtr compose_;
};

} // namespace kelvora
