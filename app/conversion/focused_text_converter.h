// SPDX-License-Identifier: MIT
#pragma once

#include "app/conversion/conversion_outcome.h"
#include "core/mapping/physical_layout_mapping.h"
#include "core/trigger/typed_text_buffer.h"
#include "host/accessibility.h"
#include "host/application_probe.h"
#include "host/pasteboard.h"
#include "host/workspace.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

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
    std::int32_t processIdentifier = 0;         ///< of the frontmost application; 0 when unknown
    bool reselectPastedText = true;             ///< for a path that pastes
    std::shared_ptr<TypedTextBuffer> typedText; ///< null: the typed-text path is not tried
    /// The buffer's text at the trigger; absent: as it is when the path reads it.
    std::optional<std::u16string> textAtTrigger = std::nullopt;
    /// The element to work on; null: the focused one is looked up.
    std::shared_ptr<AccessibilityElement> element = nullptr;

    /// What is before the caret may be something else now than what was typed.
    void forgetTyped() const {
        if (typedText) {
            typedText->reset();
        }
    }
};

/// What a conversion acts through.
struct ConversionServices {
    EventPosting& poster;
    KeyboardGuard& keyboard;
    Accessibility& accessibility;
    Pasteboard& pasteboard;
    ApplicationProbe& applicationProbe;
    const Logger& logger;
};

/// What the search for the focused element came to.
struct ElementLookUp {
    std::shared_ptr<AccessibilityElement> element; ///< null when there is none
    /// `cannotComplete`, never with an element: the application does not answer.
    AccessibilityError error = AccessibilityError::success;
};

/// What became of a selection by way of accessibility.
struct AXPathResult {
    std::optional<ConversionOutcome> outcome; ///< absent: another path may try
    /// Something was selected; it may have been replaced even if that was not seen.
    bool hadSelection = false;
};

/// A text that another program put on the pasteboard.
struct CopiedText {
    std::u16string text;
    std::int64_t changeCount = 0; ///< from before it was read
};

/// The ways to the focused application's text. They block: never on the main thread, unless said
/// otherwise. Where one posts keys or writes a text, the user's keyboards are held from before the
/// first look at what is selected, and still are when it returns, so that the layout can be
/// switched first; the caller gives them back.
class FocusedTextConverter {
public:
    FocusedTextConverter() = delete;

    /// Converts the text that the user means, by the first path that applies to the application.
    [[nodiscard]] static ConversionOutcome convertFocusedField(const ConversionRequest& request,
                                                               const ConversionServices& services);

    /// Erases the last typed word and types its conversion. `request.typedText` is not null. No
    /// outcome when there is nothing to convert: nothing was posted then, and keyboards are not
    /// held.
    [[nodiscard]] static std::optional<ConversionOutcome>
    convertTypedText(const ConversionRequest& request, const ConversionServices& services);

    /// Asks the application to show its whole accessibility tree. Any thread; does not block.
    static void enableAccessibility(Accessibility& accessibility, std::int32_t processIdentifier);

    /// What has the focus in the application, or in the session when that cannot be told or the
    /// identifier is 0. The search ends where an application does not answer.
    [[nodiscard]] static ElementLookUp focusedElement(std::int32_t processIdentifier,
                                                      const ConversionServices& services);

    /// Replaces the selected text of the element by its conversion, and of a document without a
    /// selection the word at the caret. No outcome when the element cannot be read or written that
    /// way, or was not seen to take it.
    [[nodiscard]] static AXPathResult tryAXPath(AccessibilityElement& element,
                                                const ConversionRequest& request,
                                                const ConversionServices& services);

    /// Replaces the word at the caret of a document (TextRole::multiLine) in place, and nothing
    /// else of it; `noText` where that cannot be done. No outcome for other elements. Nothing is
    /// selected.
    [[nodiscard]] static std::optional<ConversionOutcome>
    convertWordAtCaret(AccessibilityElement& element, const ConversionRequest& request,
                       const ConversionServices& services);

    /// Has the application copy its selection, or with `allowSelectAll` its whole field if nothing
    /// is selected, and paste the conversion. The pasteboard is put back unless another program
    /// took it meanwhile.
    [[nodiscard]] static ConversionOutcome
    convertThroughClipboard(const ConversionRequest& request, const ConversionServices& services,
                            bool allowSelectAll);

    /// Waits up to `timeout` seconds for a text other than the sentinel on a pasteboard that
    /// changed since `fromCount`.
    [[nodiscard]] static std::optional<CopiedText>
    pollForSentinelReplacement(std::u16string_view sentinel, std::int64_t fromCount,
                               Pasteboard& pasteboard, EventPosting& poster, double timeout);

    /// Holds the keyboards, where the desktop can, for a path that acts on what is selected. False
    /// when the focus is not known or no longer that of the trigger, or something was typed since,
    /// which may have replaced what was selected: nothing may be sent then.
    [[nodiscard]] static bool holdKeyboards(const ConversionRequest& request,
                                            const ConversionServices& services);

private:
    [[nodiscard]] static ElementLookUp copyFocusedElement(Accessibility& accessibility,
                                                          std::int32_t processIdentifier);
    [[nodiscard]] static ElementLookUp systemWideFocusedElement(Accessibility& accessibility);
};

} // namespace kelvora
