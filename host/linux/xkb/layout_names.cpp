// SPDX-License-Identifier: MIT
#include "host/linux/xkb/layout_names.h"

#include "core/text/encoding.h"

#include <xkbcommon/xkbregistry.h>

#include <libintl.h>

#include <algorithm>
#include <memory>
#include <utility>

namespace kelvora {
namespace {

// XKB has four groups; the rules say nothing about layouts beyond them, but the property keeps
// them.
constexpr std::size_t maximumGroups = 4;
constexpr std::size_t maximumListed = 64;

struct RegistryDeleter {
    void operator()(rxkb_context* context) const { rxkb_context_unref(context); }
};

std::vector<std::string_view> split(std::string_view text, char separator, std::size_t maximum) {
    std::vector<std::string_view> parts;
    while (parts.size() < maximum) {
        const std::size_t end = text.find(separator);
        parts.push_back(text.substr(0, end));
        if (end == std::string_view::npos)
            break;
        text.remove_prefix(end + 1);
    }
    return parts;
}

/// What xkeyboard-config allows itself in names of layouts and variants.
bool isPlainName(std::string_view name) {
    return std::ranges::all_of(name, [](char unit) { return unit > ' ' && unit < '\x7F'; });
}

/// Well-formed UTF-8, whatever the bytes.
std::string sanitized(const char* text) {
    return text != nullptr ? toUtf8(toUtf16(text)) : std::string();
}

/// In the language of the process's locale, by xkeyboard-config's own translations.
std::string localized(const std::string& description) {
    constexpr const char* domain = "xkeyboard-config";
    bind_textdomain_codeset(domain, "UTF-8");
    return description.empty() ? description : sanitized(dgettext(domain, description.c_str()));
}

bool describes(const RulesNames& rules, std::size_t groupCount) {
    return rules.layouts.size() == groupCount ||
           (rules.layouts.size() > maximumGroups && groupCount == maximumGroups);
}

} // namespace

RulesNames parseRulesNames(std::string_view property) {
    enum Field { rulesField, modelField, layoutField, variantField, fieldCount };
    RulesNames names;
    std::vector<std::string_view> fields = split(property, '\0', fieldCount);
    fields.resize(fieldCount);
    if (isPlainName(fields[modelField]))
        names.model = fields[modelField];
    const auto layouts = split(fields[layoutField], ',', maximumListed + 1);
    auto variants = split(fields[variantField], ',', maximumListed);
    if (layouts.size() > maximumListed)
        return names;
    variants.resize(std::max(variants.size(), layouts.size()));
    for (std::size_t index = 0; index < layouts.size(); ++index) {
        if (layouts[index].empty() || !isPlainName(layouts[index]) ||
            !isPlainName(variants[index])) {
            names.layouts.clear();
            break;
        }
        names.layouts.push_back({std::string(layouts[index]), std::string(variants[index])});
    }
    return names;
}

std::string layoutId(const LayoutAndVariant& layout) {
    return layout.variant.empty() ? layout.layout : layout.layout + '(' + layout.variant + ')';
}

std::optional<std::string> LayoutRegistry::description(const std::string& id) {
    if (!isLoaded_)
        load();
    const auto found = descriptions_.find(id);
    if (found == descriptions_.end())
        return std::nullopt;
    return found->second;
}

std::optional<std::string> LayoutRegistry::idOf(const std::string& description) {
    if (!isLoaded_)
        load();
    const auto found = ids_.find(description);
    if (found == ids_.end())
        return std::nullopt;
    return found->second;
}

void LayoutRegistry::load() {
    isLoaded_ = true;
    const std::unique_ptr<rxkb_context, RegistryDeleter> context(
        rxkb_context_new(RXKB_CONTEXT_LOAD_EXOTIC_RULES));
    if (!context)
        return;
    rxkb_context_set_log_level(context.get(), RXKB_LOG_LEVEL_CRITICAL);
    if (!rxkb_context_parse_default_ruleset(context.get()))
        return;
    for (rxkb_layout* layout = rxkb_layout_first(context.get()); layout != nullptr;
         layout = rxkb_layout_next(layout)) {
        const char* variant = rxkb_layout_get_variant(layout);
        const std::string description = sanitized(rxkb_layout_get_description(layout));
        if (description.empty())
            continue;
        const std::string id =
            layoutId({rxkb_layout_get_name(layout), variant != nullptr ? variant : ""});
        descriptions_.try_emplace(id, description);
        ids_.try_emplace(description, id);
    }
}

std::vector<LayoutName> layoutNames(const RulesNames& rules, xkb_keymap* keymap,
                                    LayoutRegistry& registry) {
    const xkb_layout_index_t groupCount = xkb_keymap_num_layouts(keymap);
    const bool byRules = describes(rules, groupCount);
    std::vector<LayoutName> names;
    names.reserve(groupCount);
    for (xkb_layout_index_t group = 0; group < groupCount; ++group) {
        std::string groupName = sanitized(xkb_keymap_layout_get_name(keymap, group));
        LayoutName name;
        if (byRules) {
            name.id = layoutId(rules.layouts[group]);
            name.name = localized(
                registry.description(*name.id).value_or(groupName.empty() ? *name.id : groupName));
        } else if (!groupName.empty()) {
            name.id = registry.idOf(groupName).value_or(groupName);
            name.name = localized(groupName);
        }
        names.push_back(std::move(name));
    }
    return names;
}

} // namespace kelvora
