// SPDX-License-Identifier: MIT
#include "tests/support/fake_desktop/layouts.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace kelvora::fake {

namespace {

constexpr std::u16string_view usLabels = u"`1234567890-=qwertyuiop[]asdfghjkl;'\\zxcvbnm,./ "
                                         u"~!@#$%^&*()_+QWERTYUIOP{}ASDFGHJKL:\"|ZXCVBNM<>? ";
constexpr std::array<KeyCode, 48> keyCodes{
    50, 18, 19, 20, 21, 23, 22, 26, 28, 25, 29, 27, 24, // ` 1 .. =
    12, 13, 14, 15, 17, 16, 32, 34, 31, 35, 33, 30,     // q .. ]
    0,  1,  2,  3,  5,  4,  38, 40, 37, 41, 39, 42,     // a .. backslash
    6,  7,  8,  9,  11, 45, 46, 43, 47, 44, 49};        // z .. / and the space bar
static_assert(usLabels.size() == 2 * keyCodes.size());

/// A layout whose keys type `texts`: one character a key, first without Shift, then with it.
InputSource makeLayout(std::string id, std::u16string_view texts) {
    const auto bytes = std::as_bytes(std::span(texts));
    return {.isSelectCapable = true,
            .id = id,
            .localizedName = id,
            .keyLayoutData = std::make_shared<std::vector<std::byte>>(bytes.begin(), bytes.end())};
}

} // namespace

LabelledKey keyLabelled(char16_t label) {
    const std::size_t key = usLabels.find(label);
    if (key == std::u16string_view::npos)
        return {};
    return {keyCodes.at(key % keyCodes.size()), key >= keyCodes.size()};
}

InputSource usLayout() {
    return makeLayout("us", usLabels);
}

InputSource russianLayout() {
    return makeLayout("ru", u"ё1234567890-=йцукенгшщзхъфывапролджэ\\ячсмитьбю. "
                            u"Ё!\"№;%:?*()_+ЙЦУКЕНГШЩЗХЪФЫВАПРОЛДЖЭ/ЯЧСМИТЬБЮ, ");
}

InputSource greekLayout() {
    return makeLayout("gr", u"`1234567890-=;ςερτυθιοπ[]ασδφγηξκλ΄'\\ζχψωβνμ,./ "
                            u"~!@#$%^&*()_+:΅ΕΡΤΥΘΙΟΠ{}ΑΣΔΦΓΗΞΚΛ¨\"|ΖΧΨΩΒΝΜ<>? ");
}

std::ptrdiff_t Translator::translate(std::span<const std::byte> layoutData, KeyCode keyCode,
                                     std::uint32_t modifierState, std::uint32_t /*keyboardType*/,
                                     std::span<char16_t> output) const {
    const auto key = std::ranges::find(keyCodes, keyCode);
    if (key == keyCodes.end())
        return -1;
    if ((modifierState & translationModifier::option) != 0)
        return 0;
    const bool isShifted = (modifierState & translationModifier::shift) != 0;
    const auto index = key - keyCodes.begin() + (isShifted ? std::ssize(keyCodes) : 0);
    std::memcpy(output.data(), layoutData.data() + 2 * index, 2);
    return 1;
}

std::u16string Layouts::text(KeyCode keyCode, bool shift) const {
    const InputSource* layout = active();
    char16_t unit = 0;
    if (!layout ||
        Translator().translate(*layout->keyLayoutData, keyCode,
                               shift ? translationModifier::shift : 0, 0, {&unit, 1}) != 1)
        return {};
    return {unit};
}

std::optional<InputSource> Layouts::currentSource() {
    const InputSource* layout = active();
    return layout ? std::optional(*layout) : std::nullopt;
}

bool Layouts::select(const InputSource& source) {
    if (refusesSelection || !source.id ||
        std::ranges::find(enabled, source.id, &InputSource::id) == enabled.end())
        return false;
    activeID = *source.id;
    return true;
}

const InputSource* Layouts::active() const {
    const auto layout = std::ranges::find(enabled, activeID, &InputSource::id);
    return layout == enabled.end() ? nullptr : &*layout;
}

} // namespace kelvora::fake
