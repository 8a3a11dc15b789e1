// SPDX-License-Identifier: MIT
#include "app/conversion/focused_text_converter.h"

#include "app/conversion/keyboard_guard.h"
#include "app/conversion/pasteboard_sentinel.h"
#include "app/io/event_posting.h"
#include "app/io/logger.h"
#include "core/text/character_class.h"
#include "core/text/characters.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

namespace kelvora {

namespace {

// Seconds.
constexpr double modifierTimeout = 0.3;
constexpr double responseTimeout = 0.5;
constexpr double shortcutDelay = 0.015;
constexpr double selectionPause = 0.015;
constexpr double pollInterval = 0.015;
constexpr double copyTimeout = 0.4;
constexpr double pastePause = 0.2;
constexpr double collapseDelay = 0.01;
constexpr double reselectDelay = 0.001;

/// Bounds the time that the keyboard is busy.
constexpr std::size_t maximumReselection = 2000;

/// One run of the path.
class ClipboardConversion {
public:
    ClipboardConversion(const ConversionRequest& request, const ConversionServices& services)
        : request_(request), services_(services), pasteboard_(services.pasteboard) {}

    [[nodiscard]] ConversionOutcome run(bool allowSelectAll) {
        countBefore_ = pasteboard_.changeCount();
        if (!prepare()) {
            return ConversionOutcome::noText();
        }
        const std::optional<std::u16string> copied = copyText(allowSelectAll);
        if (isInterrupted_) {
            return interrupted();
        }
        if (!copied || trimmed(*copied).empty()) {
            services_.logger.error(
                "Clipboard path aborted: no plain non-empty text. bundleID=%s, "
                "selectionDetected=%{bool}d, sentinelResult=%s, pbChangeBefore=%ld, "
                "pbChangeAfter=%ld",
                request_.bundleID, selectionDetected_, sentinelResult_, countBefore_,
                pasteboard_.changeCount());
            restoreIfCountIs(copied ? provokedCount() : ownCount_);
            return ConversionOutcome::noText();
        }
        const auto conversion = request_.mapping.convertString(*copied, request_.activeSourceIndex);
        return conversion ? paste(*conversion) : notConvertible();
    }

private:
    /// Up to the first write. False when nothing may be written or sent.
    [[nodiscard]] bool prepare() {
        std::optional<PasteboardSnapshot> saved = pasteboard_.snapshot();
        if (!saved) {
            services_.logger.error("Clipboard path not begun: the pasteboard could not be saved. "
                                   "bundleID=%s",
                                   request_.bundleID);
            return false;
        }
        saved_ = std::move(*saved);
        services_.poster.waitForModifiersReleased(modifierTimeout);
        // Keys sent now would take effect whenever it comes back to life.
        if (!isResponding()) {
            services_.logger.error("Clipboard path not begun: the application does not answer. "
                                   "bundleID=%s",
                                   request_.bundleID);
            return false;
        }
        if (!FocusedTextConverter::holdKeyboards(request_, services_)) {
            return false;
        }
        // From here on the text before the caret may become another than what was typed.
        if (request_.typedText) {
            request_.typedText->reset();
        }
        return true;
    }

    /// The selection, else the whole field if that is allowed.
    [[nodiscard]] std::optional<std::u16string> copyText(bool allowSelectAll) {
        std::optional<std::u16string> copied = copy(WhatToCopy::selection);
        if (!copied && allowSelectAll && !isInterrupted_) {
            copied = awaitLateCopy();
        }
        if (copied) {
            sentinelResult_ = "replaced_selection";
            selectionDetected_ = true;
        } else if (!allowSelectAll) {
            sentinelResult_ = "no_selection_select_all_disabled";
        } else if (!isInterrupted_) {
            copied = copy(WhatToCopy::everything);
            sentinelResult_ = copied ? "replaced_whole_field" : "whole_field_empty_or_timeout";
        }
        return copied;
    }

    enum class WhatToCopy { selection, everything };

    [[nodiscard]] std::optional<std::u16string> copy(WhatToCopy what) {
        sentinel_ = makePasteboardSentinel();
        write(sentinel_);
        if (what == WhatToCopy::everything) {
            press(keyCode::a, eventFlag::command, shortcutDelay);
            services_.poster.sleep(selectionPause);
        }
        press(keyCode::c, eventFlag::command, shortcutDelay);
        return isInterrupted_ ? std::nullopt : poll(copyTimeout);
    }

    /// A copy of the selection that came too late must not be taken for that of the whole field,
    /// which it would replace: an application that answers has handled the keys before.
    [[nodiscard]] std::optional<std::u16string> awaitLateCopy() {
        isInterrupted_ = !isResponding();
        return isInterrupted_ || pasteboard_.changeCount() == ownCount_ ? std::nullopt : poll(0);
    }

    [[nodiscard]] std::optional<std::u16string> poll(double timeout) {
        return FocusedTextConverter::pollForSentinelReplacement(sentinel_, ownCount_, pasteboard_,
                                                                services_.poster, timeout);
    }

    [[nodiscard]] bool isResponding() {
        return services_.applicationProbe.isResponding(services_.keyboard.target(),
                                                       responseTimeout);
    }

    [[nodiscard]] ConversionOutcome notConvertible() {
        services_.logger.info(
            "Clipboard path: text not convertible. bundleID=%s, selectionDetected=%{bool}d, "
            "sentinelResult=%s, pbChangeBefore=%ld, pbChangeAfter=%ld",
            request_.bundleID, selectionDetected_, sentinelResult_, countBefore_,
            pasteboard_.changeCount());
        if (!selectionDetected_) {
            press(keyCode::rightArrow, 0, collapseDelay);
        }
        restoreIfCountIs(provokedCount());
        return ConversionOutcome::noText();
    }

    [[nodiscard]] ConversionOutcome paste(const StringConversion& conversion) {
        write(conversion.converted);
        press(keyCode::v, eventFlag::command, shortcutDelay);
        if (isInterrupted_) {
            return interrupted();
        }
        services_.poster.sleep(pastePause);
        if (selectionDetected_ && request_.reselectPastedText) {
            reselect(std::min(characterCount(conversion.converted), maximumReselection));
        }
        services_.logger.info(
            "Clipboard path success: bundleID=%s, path=clipboard, selectionDetected=%{bool}d, "
            "sentinelResult=%s, pbChangeBefore=%ld, pbChangeAfter=%ld, targetIndex=%ld",
            request_.bundleID, selectionDetected_, sentinelResult_, countBefore_,
            pasteboard_.changeCount(), conversion.targetIndex);
        restoreIfCountIs(ownCount_);
        return ConversionOutcome::converted(conversion.targetIndex);
    }

    /// The caret stands behind the pasted text, which is there whatever interrupts this. What the
    /// user types meanwhile belongs behind it, and would replace it if it were selected then.
    void reselect(std::size_t characters) {
        std::size_t selected = 0;
        for (; selected < characters && !services_.keyboard.hasHeldKeys() && !isInterrupted_;
             ++selected) {
            press(keyCode::leftArrow, eventFlag::shift, reselectDelay);
        }
        if (selected > 0 && services_.keyboard.hasHeldKeys()) {
            press(keyCode::rightArrow, 0, collapseDelay);
        }
    }

    [[nodiscard]] ConversionOutcome interrupted() {
        services_.logger.error("Clipboard path interrupted: the application is out of reach or the "
                               "pasteboard was taken. bundleID=%s",
                               request_.bundleID);
        restoreIfCountIs(ownCount_);
        return ConversionOutcome::noText();
    }

    /// Puts a text on the pasteboard, unless interrupted. Anything else there would be taken for
    /// the copy, or be pasted over the user's text.
    void write(std::u16string_view text) {
        if (!isInterrupted_) {
            ownCount_ = pasteboard_.clearContents();
            isInterrupted_ = !pasteboard_.setString(text, pasteboardType::string) ||
                             pasteboard_.changeCount() != ownCount_;
        }
    }

    /// Sends a key, unless interrupted. Between two keys of this path a person has time to go
    /// elsewhere, and nothing is lost yet.
    void press(KeyCode keyCode, EventFlags flags, double delay) {
        isInterrupted_ = isInterrupted_ || services_.keyboard.hasLostFocus();
        if (!isInterrupted_) {
            services_.poster.sendKey(keyCode, flags, delay);
            isInterrupted_ = services_.keyboard.hasFailed();
        }
    }

    /// The change count after the copy that was asked for, and nobody else's since.
    [[nodiscard]] std::int64_t provokedCount() const { return ownCount_ + 1; }

    /// Whoever took the pasteboard otherwise keeps it: that is newer.
    void restoreIfCountIs(std::int64_t count) {
        if (pasteboard_.changeCount() == count) {
            pasteboard_.restore(std::move(saved_));
        }
    }

    const ConversionRequest& request_;
    const ConversionServices& services_;
    Pasteboard& pasteboard_;
    PasteboardSnapshot saved_;
    std::int64_t countBefore_ = 0;
    std::int64_t ownCount_ = 0; ///< after the last write here
    std::u16string sentinel_;   ///< the last that was written
    std::string_view sentinelResult_;
    bool selectionDetected_ = false;
    /// Keys do not get to the application any more, or another program took the pasteboard.
    bool isInterrupted_ = false;
};

} // namespace

std::optional<std::u16string>
FocusedTextConverter::pollForSentinelReplacement(std::u16string_view sentinel,
                                                 std::int64_t fromCount, Pasteboard& pasteboard,
                                                 EventPosting& poster, double timeout) {
    const int attempts = std::max(1, static_cast<int>(timeout / pollInterval));
    for (int attempt = 0; attempt < attempts; ++attempt) {
        poster.sleep(pollInterval);
        if (pasteboard.changeCount() == fromCount) {
            continue;
        }
        std::optional<std::u16string> text = pasteboard.string(pasteboardType::string);
        if (text && *text != sentinel && !text->empty()) {
            return text;
        }
    }
    return std::nullopt;
}

ConversionOutcome FocusedTextConverter::convertThroughClipboard(const ConversionRequest& request,
                                                                const ConversionServices& services,
                                                                bool allowSelectAll) {
    return ClipboardConversion(request, services).run(allowSelectAll);
}

} // namespace kelvora
