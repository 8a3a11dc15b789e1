// SPDX-License-Identifier: MIT
#pragma once

#include "host/input_sources.h"
#include "host/key_translator.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace kelvora::fake {

/// The key that a US board labels with this character, without and with Shift.
struct LabelledKey {
    KeyCode keyCode = keyCode::unknown;
    bool shift = false;
};
[[nodiscard]] LabelledKey keyLabelled(char16_t label);

[[nodiscard]] InputSource usLayout();
[[nodiscard]] InputSource russianLayout();
[[nodiscard]] InputSource greekLayout();

/// Reads the data of the layouts above. Option types nothing.
class Translator final : public KeyTranslator {
public:
    [[nodiscard]] std::ptrdiff_t translate(std::span<const std::byte> layoutData, KeyCode keyCode,
                                           std::uint32_t modifierState, std::uint32_t keyboardType,
                                           std::span<char16_t> output) const override;
    [[nodiscard]] PhysicalLayoutType layoutType(std::uint32_t /*keyboardType*/) const override {
        return PhysicalLayoutType::ansi;
    }
};

/// The session's layouts: US (active) and Russian, unless the test changes them.
class Layouts final : public InputSources {
public:
    std::vector<InputSource> enabled{usLayout(), russianLayout()};
    std::string activeID = "us";
    bool refusesSelection = false;

    /// What the key types in the active layout.
    [[nodiscard]] std::u16string text(KeyCode keyCode, bool shift) const;

    [[nodiscard]] std::optional<std::vector<InputSource>> enabledSources() override {
        return enabled;
    }
    [[nodiscard]] std::optional<InputSource> currentSource() override;
    [[nodiscard]] bool select(const InputSource& source) override;
    [[nodiscard]] std::uint32_t keyboardType() override { return 0; }

private:
    [[nodiscard]] const InputSource* active() const;
};

} // namespace kelvora::fake
