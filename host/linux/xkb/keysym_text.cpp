// SPDX-License-Identifier: MIT
#include "host/linux/xkb/keysym_text.h"

#include "core/text/encoding.h"

#include <xkbcommon/xkbcommon-keysyms.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdlib>

namespace kelvora {
namespace {

constexpr const char* fallbackLocale = "en_US.UTF-8";

std::string environmentLocale() {
    for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* value = std::getenv(name);
        if (value != nullptr && *value != '\0')
            return value;
    }
    return "C";
}

bool isUtf8Locale(std::string locale) {
    std::ranges::transform(locale, locale.begin(), [](unsigned char unit) {
        return static_cast<char>(std::tolower(unit));
    });
    return locale.find(".utf-8") != std::string::npos || locale.find(".utf8") != std::string::npos;
}

struct DeadKey {
    xkb_keysym_t keysym;
    char16_t text;
};

// For dead keys that the compose table does not know. Where Unicode has no spacing form, the
// combining mark itself.
constexpr auto deadKeys = std::to_array<DeadKey>({
    {XKB_KEY_dead_grave, u'`'},
    {XKB_KEY_dead_acute, u'\u00B4'},
    {XKB_KEY_dead_circumflex, u'^'},
    {XKB_KEY_dead_tilde, u'~'},
    {XKB_KEY_dead_macron, u'\u00AF'},
    {XKB_KEY_dead_breve, u'\u02D8'},
    {XKB_KEY_dead_abovedot, u'\u02D9'},
    {XKB_KEY_dead_diaeresis, u'\u00A8'},
    {XKB_KEY_dead_abovering, u'\u00B0'},
    {XKB_KEY_dead_doubleacute, u'\u02DD'},
    {XKB_KEY_dead_caron, u'\u02C7'},
    {XKB_KEY_dead_cedilla, u'\u00B8'},
    {XKB_KEY_dead_ogonek, u'\u02DB'},
    {XKB_KEY_dead_iota, u'\u037A'},
    {XKB_KEY_dead_voiced_sound, u'\u309B'},
    {XKB_KEY_dead_semivoiced_sound, u'\u309C'},
    {XKB_KEY_dead_belowdot, u'\u0323'},
    {XKB_KEY_dead_hook, u'\u0309'},
    {XKB_KEY_dead_horn, u'\u031B'},
    {XKB_KEY_dead_stroke, u'/'},
    {XKB_KEY_dead_abovecomma, u'\u1FBF'},
    {XKB_KEY_dead_abovereversedcomma, u'\u1FFE'},
    {XKB_KEY_dead_doublegrave, u'\u02F5'},
    {XKB_KEY_dead_belowring, u'\u02F3'},
    {XKB_KEY_dead_belowmacron, u'\u02CD'},
    {XKB_KEY_dead_belowcircumflex, u'\u032D'},
    {XKB_KEY_dead_belowtilde, u'\u0330'},
    {XKB_KEY_dead_belowbreve, u'\u032E'},
    {XKB_KEY_dead_belowdiaeresis, u'\u0324'},
    {XKB_KEY_dead_invertedbreve, u'\u0311'},
    {XKB_KEY_dead_belowcomma, u','},
    {XKB_KEY_dead_currency, u'\u00A4'},
    {XKB_KEY_dead_lowline, u'_'},
    {XKB_KEY_dead_aboveverticalline, u'\u02C8'},
    {XKB_KEY_dead_belowverticalline, u'\u02CC'},
    {XKB_KEY_dead_longsolidusoverlay, u'/'},
    {XKB_KEY_dead_a, u'a'},
    {XKB_KEY_dead_A, u'A'},
    {XKB_KEY_dead_e, u'e'},
    {XKB_KEY_dead_E, u'E'},
    {XKB_KEY_dead_i, u'i'},
    {XKB_KEY_dead_I, u'I'},
    {XKB_KEY_dead_o, u'o'},
    {XKB_KEY_dead_O, u'O'},
    {XKB_KEY_dead_u, u'u'},
    {XKB_KEY_dead_U, u'U'},
    {XKB_KEY_dead_small_schwa, u'\u0259'},
    {XKB_KEY_dead_capital_schwa, u'\u018F'},
    {XKB_KEY_dead_greek, u'\u00B5'},
});

/// The block that X11 reserves for dead keys, without the AccessX keys in its middle.
constexpr bool isDeadKey(xkb_keysym_t keysym) {
    return keysym >= XKB_KEY_dead_grave && keysym <= XKB_KEY_dead_longsolidusoverlay &&
           (keysym < XKB_KEY_AccessX_Enable || keysym > XKB_KEY_AudibleBell_Enable);
}

} // namespace

XkbComposeTablePtr loadComposeTable(xkb_context* context) {
    return loadComposeTable(context, environmentLocale());
}

XkbComposeTablePtr loadComposeTable(xkb_context* context, const std::string& locale) {
    XkbComposeTablePtr table;
    if (isUtf8Locale(locale))
        table.reset(xkb_compose_table_new_from_locale(context, locale.c_str(),
                                                      XKB_COMPOSE_COMPILE_NO_FLAGS));
    if (!table)
        table.reset(xkb_compose_table_new_from_locale(context, fallbackLocale,
                                                      XKB_COMPOSE_COMPILE_NO_FLAGS));
    return table;
}

KeysymText::KeysymText(xkb_compose_table* composeTable)
    : compose_(composeTable != nullptr
                   ? xkb_compose_state_new(composeTable, XKB_COMPOSE_STATE_NO_FLAGS)
                   : nullptr) {}

/// What the sequence of one or two keysyms (`second` may be NoSymbol) composes; empty when nothing.
std::u16string KeysymText::composed(xkb_keysym_t first, xkb_keysym_t second) const {
    if (!compose_)
        return {};
    xkb_compose_state* state = compose_.get();
    xkb_compose_state_reset(state);
    xkb_compose_state_feed(state, first);
    if (second != XKB_KEY_NoSymbol) {
        if (xkb_compose_state_get_status(state) != XKB_COMPOSE_COMPOSING)
            return {};
        xkb_compose_state_feed(state, second);
    }
    if (xkb_compose_state_get_status(state) != XKB_COMPOSE_COMPOSED)
        return {};
    std::array<char, 256> utf8{}; // xkbcommon stores no longer strings
    const int length = xkb_compose_state_get_utf8(state, utf8.data(), utf8.size());
    if (length <= 0 || static_cast<std::size_t>(length) >= utf8.size())
        return {};
    return toUtf16(std::string_view(utf8.data(), static_cast<std::size_t>(length)));
}

std::u16string KeysymText::operator()(xkb_keysym_t keysym) const {
    if (keysym == XKB_KEY_NoSymbol)
        return {};
    if (std::u16string text = composed(keysym, XKB_KEY_NoSymbol); !text.empty())
        return text;
    if (isDeadKey(keysym)) {
        for (const xkb_keysym_t second : {keysym, xkb_keysym_t{XKB_KEY_space}}) {
            if (std::u16string text = composed(keysym, second); !text.empty())
                return text;
        }
        const auto known = std::ranges::find(deadKeys, keysym, &DeadKey::keysym);
        return known != deadKeys.end() ? std::u16string(1, known->text) : std::u16string();
    }
    std::array<char, 8> utf8{};
    const int size = xkb_keysym_to_utf8(keysym, utf8.data(), utf8.size()); // counts the NUL
    return size > 1 ? toUtf16(std::string_view(utf8.data(), static_cast<std::size_t>(size - 1)))
                    : std::u16string();
}

} // namespace kelvora
