// SPDX-License-Identifier: MIT
#pragma once

#include "app/conversion/conversion_outcome.h"
#include "core/mapping/physical_layout_mapping.h"
#include "core/trigger/typed_text_buffer.h"
#include "host/workspace.h"

#include <memory>
#include <optional>
#include <string>

namespace kelvora {

class EventPosting;
class KeyboardGuard;
class Logger;

/// What one conversion is about, gathered at the trigger.
struct ConversionRequest {
    PhysicalLayoutMapping mapping;
    std::optional<int> activeSourceIndex; ///< absent when another layout than the two is active
    std::string bundleID;                 ///< of the frontmost application; "unknown" without one
    ApplicationKind applicationKind = ApplicationKind::ordinary;
    bool reselectPastedText = true;             ///< for a path that pastes
    std::shared_ptr<TypedTextBuffer> typedText; ///< null: the typed-text path is not tried
    /// The buffer's text at the trigger; absent: as it is when the path reads it.
    std::optional<std::u16string> textAtTrigger = std::nullopt;
};

/// What a conversion acts through.
struct ConversionServices {
    EventPosting& poster;
    KeyboardGuard& keyboard;
    const Logger& logger;
};

/// The ways to the focused application's text. They block: never on the main thread.
class FocusedTextConverter {
public:
    FocusedTextConverter() = delete;

    /// Converts the text that the user means, by the first path that applies to the application.
    [[nodiscard]] static ConversionOutcome convertFocusedField(const ConversionRequest& request,
                                                               const ConversionServices& services);

    /// Erases the last typed word and types its conversion. `request.typedText` is not null. No
    /// outcome when there is nothing to convert: nothing was posted then. Keyboards are still held
    /// after `converted`, so that the layout can be switched first.
    [[nodiscard]] static std::optional<ConversionOutcome>
    convertTypedText(const ConversionRequest& request, const ConversionServices& services);
};

} // namespace kelvora
