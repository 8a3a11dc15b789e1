// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/xkb/handles.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kelvora {

struct LayoutAndVariant {
    std::string layout;
    std::string variant; ///< empty for the layout's own

    friend bool operator==(const LayoutAndVariant&, const LayoutAndVariant&) = default;
};

/// What a keymap was made from, in the terms of xkeyboard-config's rules.
struct RulesNames {
    std::string model;
    std::vector<LayoutAndVariant> layouts;
};

/// Reads the value of the root window's property _XKB_RULES_NAMES: rules, model, layouts, variants
/// and options, each ended by a NUL, the lists separated by commas. Any bytes are safe; `layouts`
/// is empty when they do not name layouts.
[[nodiscard]] RulesNames parseRulesNames(std::string_view property);

/// "us", "ru(phonetic)": the same after a restart and wherever the layout stands in the list.
[[nodiscard]] std::string layoutId(const LayoutAndVariant& layout);

struct LayoutName {
    std::optional<std::string> id; ///< absent for a group that has no name at all
    std::string name;              ///< for display, in the user's language, UTF-8

    friend bool operator==(const LayoutName&, const LayoutName&) = default;
};

/// xkeyboard-config's layouts and their display names, read when first asked for. One thread.
class LayoutRegistry {
public:
    /// In English, as in "Russian (phonetic)". Absent for ids that the registry does not know.
    [[nodiscard]] std::optional<std::string> description(const std::string& id);

    /// The first layout of that description.
    [[nodiscard]] std::optional<std::string> idOf(const std::string& description);

private:
    void load();

    std::map<std::string, std::string> descriptions_; ///< by id
    std::map<std::string, std::string> ids_;          ///< by description
    bool isLoaded_ = false;
};

/// One name for each group of the keymap. When `rules` do not describe this keymap (it was loaded
/// from elsewhere, or they are still those of the keymap before it), the keymap's own names of its
/// groups tell the layouts: by their description, or else as they stand.
[[nodiscard]] std::vector<LayoutName> layoutNames(const RulesNames& rules, xkb_keymap* keymap,
                                                  LayoutRegistry& registry);

} // namespace kelvora
