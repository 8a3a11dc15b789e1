// SPDX-License-Identifier: MIT
#include "core/mapping/input_source_switcher.h"

#include "core/mapping/system_keyboard_mapping.h"

#include <algorithm>
#include <utility>

namespace kelvora {

std::vector<InputSourceChoice> InputSourceSwitcher::enabledLayouts(InputSources& sources) {
    std::vector<InputSourceChoice> choices;
    auto enabled = sources.knownSources();
    if (!enabled)
        return choices;
    for (InputSource& source : *enabled) {
        if (source.isSelectCapable.value_or(false) && source.id && source.localizedName &&
            source.keyLayoutData)
            choices.push_back({std::move(*source.id), std::move(*source.localizedName)});
    }
    return choices;
}

std::optional<std::string> InputSourceSwitcher::currentID(InputSources& sources) {
    const auto current = sources.currentSource();
    return current ? current->id : std::nullopt;
}

bool InputSourceSwitcher::select(InputSources& sources, std::string_view id) {
    const auto found = source(sources, id);
    return found && sources.select(*found);
}

std::optional<PhysicalLayoutMapping> InputSourceSwitcher::mapping(InputSources& sources,
                                                                  const KeyTranslator& translator,
                                                                  std::string_view firstID,
                                                                  std::string_view secondID) {
    const auto first = source(sources, firstID);
    if (!first)
        return std::nullopt;
    const auto second = source(sources, secondID);
    if (!second)
        return std::nullopt;
    if (!first->keyLayoutData || !second->keyLayoutData)
        return std::nullopt;
    return SystemKeyboardMapping::mapping(translator, *first->keyLayoutData, *second->keyLayoutData,
                                          sources.keyboardType());
}

std::optional<InputSource> InputSourceSwitcher::source(InputSources& sources, std::string_view id) {
    auto enabled = sources.enabledSources();
    if (!enabled)
        return std::nullopt;
    const auto found =
        std::ranges::find_if(*enabled, [id](const InputSource& source) { return source.id == id; });
    if (found == enabled->end())
        return std::nullopt;
    return std::move(*found);
}

} // namespace kelvora
