// SPDX-License-Identifier: MIT
#include "tests/support/fake_desktop/layouts.h"

#include "core/text/character_class.h"

#include <algorithm>
#include <array>
#include <utility>

namespace kelvora::fake {

namespace {

constexpr std::u16string_view usBase = u"`1234567890-=qwertyuiop[]asdfghjkl;'\\zxcvbnm,./ ";
constexpr std::u16string_view usShifted = u"~!@#$%^&*()_+QWERTYUIOP{}ASDFGHJKL:\"|ZXCVBNM<>? ";
constexpr std::array<KeyCode, 48> keyCodes{
    50, 18, 19, 20, 21, 23, 22, 26, 28, 25, 29, 27, 24, // ` 1 .. =
    12, 13, 14, 15, 17, 16, 32, 34, 31, 35, 33, 30,     // q .. ]
    0,  1,  2,  3,  5,  4,  38, 40, 37, 41, 39, 42,     // a .. backslash
    6,  7,  8,  9,  11, 45, 46, 43, 47, 44, 49};        // z .. / and the space bar
static_assert(usBase.size() == keyCodes.size() && usShifted.size() == keyCodes.size());

// One key of a table: its code, then the low and high byte of the unit without and with Shift.
constexpr std::size_t entrySize = 5;

char16_t unitAt(std::span<const std::byte> entry, std::size_t offset) {
    return static_cast<char16_t>(std::to_integer<unsigned>(entry[offset]) |
                                 (std::to_integer<unsigned>(entry[offset + 1]) << 8U));
}

} // namespace

LabelledKey keyLabelled(char16_t label) {
    if (const std::size_t key = usBase.find(label); key != std::u16string_view::npos) {
        return {keyCodes.at(key), false};
    }
    if (const std::size_t key = usShifted.find(label); key != std::u16string_view::npos) {
        return {keyCodes.at(key), true};
    }
    return {};
}

InputSource makeLayout(std::string id, std::u16string_view base, std::u16string_view shifted) {
    auto data = std::make_shared<std::vector<std::byte>>();
    for (std::size_t key = 0; key < keyCodes.size(); ++key) {
        data->push_back(static_cast<std::byte>(keyCodes.at(key)));
        for (const char16_t unit : {base[key], shifted[key]}) {
            data->push_back(static_cast<std::byte>(unit & 0xFFU));
            data->push_back(static_cast<std::byte>(unit >> 8U));
        }
    }
    return {.isSelectCapable = true, .id = id, .localizedName = id, .keyLayoutData = data};
}

InputSource usLayout() {
    return makeLayout("us", usBase, usShifted);
}

InputSource russianLayout() {
    return makeLayout("ru", u"ё1234567890-=йцукенгшщзхъфывапролджэ\\ячсмитьбю. ",
                      u"Ё!\"№;%:?*()_+ЙЦУКЕНГШЩЗХЪФЫВАПРОЛДЖЭ/ЯЧСМИТЬБЮ, ");
}

InputSource greekLayout() {
    return makeLayout("gr", u"`1234567890-=;ςερτυθιοπ[]ασδφγηξκλ΄'\\ζχψωβνμ,./ ",
                      u"~!@#$%^&*()_+:΅ΕΡΤΥΘΙΟΠ{}ΑΣΔΦΓΗΞΚΛ¨\"|ΖΧΨΩΒΝΜ<>? ");
}

std::ptrdiff_t Translator::translate(std::span<const std::byte> layoutData, KeyCode keyCode,
                                     std::uint32_t modifierState, std::uint32_t /*keyboardType*/,
                                     std::span<char16_t> output) const {
    for (; layoutData.size() >= entrySize; layoutData = layoutData.subspan(entrySize)) {
        if (std::to_integer<KeyCode>(layoutData[0]) != keyCode) {
            continue;
        }
        if ((modifierState & translationModifier::option) != 0 || output.empty()) {
            return 0;
        }
        const char16_t base = unitAt(layoutData, 1);
        const char16_t shifted = unitAt(layoutData, 3);
        bool useShifted = (modifierState & translationModifier::shift) != 0;
        if ((modifierState & translationModifier::capsLock) != 0 && isLetter({&base, 1}) &&
            isLetter({&shifted, 1})) {
            useShifted = !useShifted;
        }
        output[0] = useShifted ? shifted : base;
        return 1;
    }
    return -1;
}

std::u16string Layouts::text(KeyCode keyCode, bool shift) const {
    const InputSource* layout = active();
    char16_t unit = 0;
    if (!layout ||
        Translator().translate(*layout->keyLayoutData, keyCode,
                               shift ? translationModifier::shift : 0, 0, {&unit, 1}) != 1) {
        return {};
    }
    return {unit};
}

std::optional<InputSource> Layouts::currentSource() {
    const InputSource* layout = active();
    return layout ? std::optional(*layout) : std::nullopt;
}

bool Layouts::select(const InputSource& source) {
    if (refusesSelection || !source.id ||
        std::ranges::find(enabled, source.id, &InputSource::id) == enabled.end()) {
        return false;
    }
    activeID = *source.id;
    return true;
}

const InputSource* Layouts::active() const {
    const auto layout = std::ranges::find(enabled, activeID, &InputSource::id);
    return layout == enabled.end() ? nullptr : &*layout;
}

} // namespace kelvora::fake
