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
constexpr double responseTimeout = 0.5; // of each question
constexpr int responseQuestions = 4;
constexpr double handlingTimeout = 0.25; // and as long again until the next question
constexpr int handlingQuestions = 4;
constexpr int pasteQuestions = 20;
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
        const std::optional<CopiedText> copied = copyText(allowSelectAll);
        if (isInterrupted_) {
            return interrupted();
        }
        if (!copied || trimmed(copied->text).empty()) {
            services_.logger.error(
                "Clipboard path aborted: no plain non-empty text. bundleID=%s, "
                "selectionDetected=%{bool}d, sentinelResult=%s, pbChangeBefore=%ld, "
                "pbChangeAfter=%ld",
                request_.bundleID, selectionDetected_, sentinelResult_, countBefore_,
                pasteboard_.changeCount());
            leave();
            return ConversionOutcome::noText();
        }
        const auto conversion =
            request_.mapping.convertString(copied->text, request_.activeSourceIndex);
        return conversion ? paste(*conversion, copied->changeCount) : notConvertible();
    }

private:
    /// Up to the first write. False when nothing may be written or sent.
    [[nodiscard]] bool prepare() {
        // Keys sent now would take effect whenever it comes back to life.
        if (!awaitResponse()) {
            services_.logger.error("Clipboard path not begun: the application does not answer. "
                                   "bundleID=%s",
                                   request_.bundleID);
            return false;
        }
        const bool hadHeldKeys = services_.keyboard.hasHeldKeys();
        std::optional<PasteboardSnapshot> saved = pasteboard_.snapshot();
        if (!saved) {
            services_.logger.error("Clipboard path not begun: the pasteboard could not be saved. "
                                   "bundleID=%s",
                                   request_.bundleID);
            return false;
        }
        saved_ = std::move(*saved);
        // Saving takes seconds where somebody types during it. They shall not wait for the rest
        // too.
        if (!hadHeldKeys && services_.keyboard.hasHeldKeys()) {
            services_.logger.info("Clipboard path not begun: the user types on. bundleID=%s",
                                  request_.bundleID);
            return false;
        }
        services_.poster.waitForModifiersReleased(modifierTimeout);
        if (!FocusedTextConverter::holdKeyboards(request_, services_)) {
            return false;
        }
        request_.forgetTyped();
        return true;
    }

    /// The selection, else the whole field if that is allowed.
    [[nodiscard]] std::optional<CopiedText> copyText(bool allowSelectAll) {
        std::optional<CopiedText> copied = copy(WhatToCopy::selection);
        if (copied) {
            sentinelResult_ = "replaced_selection";
            selectionDetected_ = true;
        } else if (!allowSelectAll || hasCopiedOther()) {
            sentinelResult_ = "no_selection_select_all_disabled";
        } else if (!isInterrupted_) {
            copied = copy(WhatToCopy::everything);
            sentinelResult_ = copied ? "replaced_whole_field" : "whole_field_empty_or_timeout";
        }
        return copied;
    }

    /// What was copied without being a text is selected, and is what the user means. An empty text
    /// is what some copy of no selection.
    [[nodiscard]] bool hasCopiedOther() {
        return pasteboard_.changeCount() != ownCount_ &&
               pasteboard_.string(pasteboardType::string) != u"";
    }

    enum class WhatToCopy { selection, everything };

    [[nodiscard]] std::optional<CopiedText> copy(WhatToCopy what) {
        sentinel_ = makePasteboardSentinel();
        write([this] { return pasteboard_.setMarker(sentinel_); });
        if (what == WhatToCopy::everything) {
            isAllSelected_ = press(keyCode::a, eventFlag::command, shortcutDelay);
            services_.poster.sleep(selectionPause);
        }
        isCopyRequested_ = press(keyCode::c, eventFlag::command, shortcutDelay);
        if (isInterrupted_) {
            return std::nullopt;
        }
        std::optional<CopiedText> copied = poll(copyTimeout);
        if (!copied || ownsPasteboard() == false) {
            return awaitLateCopy();
        }
        applicationsText_ = copied->text;
        return copied;
    }

    /// A copy that comes too late must neither be taken for that of the whole field, which it
    /// would replace, nor come after the restore. What another program copied first must not be
    /// pasted over the selection.
    [[nodiscard]] std::optional<CopiedText> awaitLateCopy() {
        isInterrupted_ = !awaitHandling(handlingQuestions);
        if (isInterrupted_ || pasteboard_.changeCount() == ownCount_) {
            return std::nullopt;
        }
        return poll(0); // another's may be made on behalf of the application
    }

    [[nodiscard]] std::optional<CopiedText> poll(double timeout) {
        return FocusedTextConverter::pollForSentinelReplacement(sentinel_, ownCount_, pasteboard_,
                                                                services_.poster, timeout);
    }

    [[nodiscard]] bool isResponding(double timeout) {
        return services_.applicationProbe.isResponding(services_.keyboard.target(), timeout);
    }

    [[nodiscard]] std::optional<bool> ownsPasteboard() {
        return services_.applicationProbe.ownsPasteboard(services_.keyboard.target());
    }

    /// Whether the application's copy is there; a clipboard manager may have taken it over.
    [[nodiscard]] bool holdsCopy() {
        return ownsPasteboard().value_or(pasteboard_.changeCount() == ownCount_ + 1) ||
               (!applicationsText_.empty() &&
                pasteboard_.string(pasteboardType::string) == applicationsText_);
    }

    /// What was selected may keep it busy. Somebody who types on does not wait for it.
    [[nodiscard]] bool awaitResponse() {
        for (int question = 0; question < responseQuestions; ++question) {
            if (isResponding(responseTimeout)) {
                return true;
            }
            if (services_.keyboard.hasHeldKeys()) {
                return false;
            }
        }
        return false;
    }

    /// Waits up to half a second each for the application to have handled the keys that were sent:
    /// one that answers has done so before. False when it does not answer.
    [[nodiscard]] bool awaitHandling(int questions) {
        for (int question = 0; question < questions; ++question) {
            if (isResponding(handlingTimeout)) {
                return true;
            }
            services_.poster.sleep(handlingTimeout);
        }
        return false;
    }

    [[nodiscard]] ConversionOutcome notConvertible() {
        services_.logger.info(
            "Clipboard path: text not convertible. bundleID=%s, selectionDetected=%{bool}d, "
            "sentinelResult=%s, pbChangeBefore=%ld, pbChangeAfter=%ld",
            request_.bundleID, selectionDetected_, sentinelResult_, countBefore_,
            pasteboard_.changeCount());
        collapse();
        leave();
        return ConversionOutcome::noText();
    }

    /// `copiedCount` is the change count of the copy.
    [[nodiscard]] ConversionOutcome paste(const StringConversion& conversion,
                                          std::int64_t copiedCount) {
        isTaken_ = pasteboard_.changeCount() != copiedCount && !holdsCopy();
        isInterrupted_ = isTaken_;
        write([&] { return pasteboard_.setString(conversion.converted, pasteboardType::string); });
        if (press(keyCode::v, eventFlag::command, shortcutDelay)) {
            isAllSelected_ = false;
            // What it pastes must be there until it has done so.
            bool isHandled = awaitHandling(handlingQuestions);
            if (!isHandled) {
                services_.keyboard.end(); // nobody goes without keyboards for that long
                mayReselect_ = false;
                isHandled = awaitHandling(pasteQuestions);
            }
            services_.poster.sleep(pastePause);
            isInterrupted_ = isInterrupted_ || !isHandled;
        }
        if (isInterrupted_) {
            return interrupted();
        }
        if (selectionDetected_ && request_.reselectPastedText && mayReselect_) {
            reselect(std::min(characterCount(conversion.converted), maximumReselection));
        }
        services_.logger.info(
            "Clipboard path success: bundleID=%s, path=clipboard, selectionDetected=%{bool}d, "
            "sentinelResult=%s, pbChangeBefore=%ld, pbChangeAfter=%ld, targetIndex=%ld",
            request_.bundleID, selectionDetected_, sentinelResult_, countBefore_,
            pasteboard_.changeCount(), conversion.targetIndex);
        leave();
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
        leave();
        return ConversionOutcome::noText();
    }

    /// Takes the pasteboard and has `set` write a text to it, unless interrupted. Anything else
    /// there would be taken for the copy, or be pasted over the user's text.
    template <typename Set>
    void write(const Set& set) {
        if (!isInterrupted_) {
            isCopyRequested_ = false;
            ownCount_ = pasteboard_.clearContents();
            isTaken_ = !set() || pasteboard_.changeCount() != ownCount_;
            isInterrupted_ = isTaken_;
        }
    }

    /// Sends a key, unless interrupted. True when it was sent, even if not all of it got through.
    bool press(KeyCode keyCode, EventFlags flags, double delay) {
        return !isInterrupted_ && send(keyCode, flags, delay);
    }

    /// The same whatever became of the pasteboard. Between two keys of this path a person has time
    /// to go elsewhere, and nothing is lost yet.
    bool send(KeyCode keyCode, EventFlags flags, double delay) {
        const bool mayBeSent =
            !services_.keyboard.hasFailed() && !services_.keyboard.hasLostFocus();
        if (mayBeSent) {
            services_.poster.sendKey(keyCode, flags, delay);
        }
        isInterrupted_ = isInterrupted_ || !mayBeSent || services_.keyboard.hasFailed();
        return mayBeSent;
    }

    void collapse() {
        if (std::exchange(isAllSelected_, false)) {
            send(keyCode::rightArrow, 0, collapseDelay);
        }
    }

    /// Gives the pasteboard back. Whoever took it, other than for the copy that was asked for,
    /// keeps it: that is newer.
    void leave() {
        // What the user typed meanwhile would replace the whole field.
        if (services_.keyboard.hasHeldKeys()) {
            collapse();
        }
        const std::int64_t newer = pasteboard_.changeCount() - ownCount_;
        if (!isTaken_ && (newer == 0 || (isCopyRequested_ && holdsCopy()))) {
            pasteboard_.restore(std::move(saved_));
        }
    }

    const ConversionRequest& request_;
    const ConversionServices& services_;
    Pasteboard& pasteboard_;
    PasteboardSnapshot saved_;
    std::int64_t countBefore_ = 0;
    std::int64_t ownCount_ = 0;       ///< after the last write here
    std::u16string sentinel_;         ///< the last that was written
    std::u16string applicationsText_; ///< as it was copied; empty when that is not known
    std::string_view sentinelResult_;
    bool selectionDetected_ = false;
    bool isCopyRequested_ = false; ///< since the last write here
    bool isAllSelected_ = false;   ///< by this path, and nothing pasted over it
    bool isTaken_ = false;         ///< the pasteboard, by another program
    bool mayReselect_ = true;
    /// That, or keys do not get to the application any more.
    bool isInterrupted_ = false;
};

} // namespace

std::optional<CopiedText>
FocusedTextConverter::pollForSentinelReplacement(std::u16string_view sentinel,
                                                 std::int64_t fromCount, Pasteboard& pasteboard,
                                                 EventPosting& poster, double timeout) {
    const int attempts = std::max(1, static_cast<int>(timeout / pollInterval));
    for (int attempt = 0; attempt < attempts; ++attempt) {
        poster.sleep(pollInterval);
        const std::int64_t count = pasteboard.changeCount();
        if (count == fromCount) {
            continue;
        }
        std::optional<std::u16string> text = pasteboard.string(pasteboardType::string);
        if (text && *text != sentinel && !text->empty()) {
            return CopiedText{std::move(*text), count};
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
