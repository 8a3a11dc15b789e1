// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/mapping/input_source_choice.h"
#include "core/mapping/physical_layout_mapping.h"
#include "host/input_sources.h"
#include "host/key_translator.h"

namespace kelvora {

/// The enabled layouts, the active one, and the correspondence between two of them. Keeps nothing:
/// every call asks the desktop afresh. Main thread only.
class InputSourceSwitcher {
public:
    InputSourceSwitcher() = delete;

    /// The layouts that can be selected and converted between, in the desktop's order.
    [[nodiscard]] static std::vector<InputSourceChoice> enabledLayouts(InputSources& sources);

    /// The active source, one of enabledLayouts() or not. Absent when there is none or it has no
    /// id.
    [[nodiscard]] static std::optional<std::string> currentID(InputSources& sources);

    /// True when the source with this id is enabled and is the active one now.
    [[nodiscard]] static bool select(InputSources& sources, std::string_view id);

    /// Absent when either source is not enabled or has no key-layout data.
    [[nodiscard]] static std::optional<PhysicalLayoutMapping>
    mapping(InputSources& sources, const KeyTranslator& translator, std::string_view firstID,
            std::string_view secondID);

    /// The first enabled source with this id, whatever kind it is.
    [[nodiscard]] static std::optional<InputSource> source(InputSources& sources,
                                                           std::string_view id);
};

} // namespace kelvora
