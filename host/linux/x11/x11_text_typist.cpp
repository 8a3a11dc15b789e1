// SPDX-License-Identifier: MIT
#include "host/linux/x11/x11_text_typist.h"

#include "core/text/encoding.h"
#include "host/linux/x11/x11_neutral_keyboard.h"
#include "host/linux/x11/x11_spare_keys.h"

#include <algorithm>
#include <vector>

namespace kelvora {
namespace {

constexpr char32_t replacement = U'�';

std::vector<char32_t> scalarsOf(std::u16string_view text) {
    std::vector<char32_t> scalars;
    for (std::size_t offset = 0; offset < text.size();) {
        const DecodedScalar scalar = decodeScalar(text, offset);
        const bool isSurrogate = scalar.value >= 0xD800 && scalar.value <= 0xDFFF;
        scalars.push_back(isSurrogate ? replacement : scalar.value);
        offset += scalar.length;
    }
    return scalars;
}

/// Does the stroke type the character with these modifiers locked?
bool typesExactly(xkb_state* state, const KeyStroke& stroke, char32_t character,
                  std::uint8_t locked) {
    xkb_state_update_mask(state, stroke.modifiers, 0, locked, 0, 0, stroke.group);
    const char32_t typed = xkb_state_key_get_utf32(state, stroke.keycode);
    return typed == character || (character == U'\n' && typed == U'\r');
}

class Typist {
public:
    Typist(X11KeyboardControl& control, const X11KeyGate& gate)
        : control_(control), gate_(gate), state_(xkb_state_new(control.keymap())),
          neutral_(control, X11NeutralKeyboard::Locks::clearCapsLock),
          group_(control.state().lockedGroup) {}

    bool type(char32_t character) {
        const auto stroke = control_.keys().find(character, group_);
        if (!stroke)
            return true;
        if (!typesExactly(state_.get(), *stroke, character, neutral_.lockedModifiers()))
            neutral_.clearLocks();
        return press(*stroke);
    }

    bool press(const KeyStroke& stroke) {
        return gate_([&] {
            neutral_.lockGroup(stroke.group);
            group_ = stroke.group;
            neutral_.pressModifiers(stroke.modifiers);
            control_.pressKey(stroke.keycode);
            control_.releaseKey(stroke.keycode);
            neutral_.releaseModifiers();
        });
    }

    [[nodiscard]] std::uint8_t group() const { return group_; }

private:
    X11KeyboardControl& control_;
    const X11KeyGate& gate_;
    XkbStatePtr state_;
    X11NeutralKeyboard neutral_;
    std::uint8_t group_;
};

/// The characters of `text` that no key types, each once, in order.
std::vector<char32_t> missing(const CharacterKeys& keys, std::span<const char32_t> text) {
    std::vector<char32_t> result;
    for (const char32_t character : text)
        if (!keys.find(character, 0) && std::ranges::find(result, character) == result.end())
            result.push_back(character);
    return result;
}

/// How much of `text` one batch of borrowed keys serves.
std::size_t batchLength(const CharacterKeys& keys, std::span<const char32_t> text) {
    std::vector<char32_t> needed;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (keys.find(text[i], 0) || std::ranges::find(needed, text[i]) != needed.end())
            continue;
        if (needed.size() == keys.spareKeycodes().size())
            return std::max<std::size_t>(i, 1);
        needed.push_back(text[i]);
    }
    return text.size();
}

bool typeBatch(X11KeyboardControl& control, std::span<const char32_t> text,
               const X11KeyGate& gate) {
    const X11SpareKeys spare(control, missing(control.keys(), text));
    Typist typist(control, gate);
    for (const char32_t character : text) {
        const std::uint8_t borrowed = spare.keycodeFor(character);
        const bool sent =
            borrowed != 0 ? typist.press({borrowed, typist.group(), 0}) : typist.type(character);
        if (!sent)
            return false;
    }
    return true;
}

} // namespace

bool typeText(X11KeyboardControl& control, std::u16string_view text, const X11KeyGate& gate) {
    const std::vector<char32_t> scalars = scalarsOf(text);
    std::span<const char32_t> rest(scalars);
    bool hasBorrowed = false;
    while (!rest.empty() && control.synchronize()) {
        const std::size_t length = batchLength(control.keys(), rest);
        hasBorrowed = hasBorrowed || !missing(control.keys(), rest.first(length)).empty();
        if (!typeBatch(control, rest.first(length), gate))
            break;
        rest = rest.subspan(length);
    }
    return hasBorrowed;
}

} // namespace kelvora
