// SPDX-License-Identifier: MIT
#pragma once

#include "host/event_source.h"
#include "host/linux/secure_entry.h"
#include "host/workspace.h"

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <variant>
#include <vector>

namespace kelvora {

/// Whether the focus may go elsewhere or a menu may open at an event: at whatever is neither plain
/// text nor Backspace, such as Tab, Return, an arrow, a shortcut, a function key, a click.
[[nodiscard]] bool mayMoveFocus(const InputEvent& event);

/// Stands between the desktop's events and their reader, and lets nothing through that goes to a
/// password field.
///
/// News of the focus comes late. So what follows an event that may have moved the focus is held
/// back, in its order, for `longestHold`, and text for `longestTextHold`; by then it is known where
/// it went, or that this is still to be found out. Then it is held for `longestPending`, and
/// withheld as secret after that. While nobody follows the focus everything passes at once. Main
/// thread only; keeps no clock of its own.
class SecureEntryGate final : private SecureEntryListener {
public:
    using Time = std::chrono::steady_clock::time_point;

    static constexpr std::chrono::milliseconds longestHold{50};
    /// A browser tells of its focus when the page has dealt with the key, and not before. Nobody
    /// waits for a text to be recorded, so that this costs nothing.
    static constexpr std::chrono::milliseconds longestTextHold{250};
    static constexpr std::chrono::milliseconds longestPending{300};
    /// A focus that moves longer than this after the user's last act was moved by the application.
    static constexpr std::chrono::seconds longestEffect{1};
    /// A secret focus that nobody confirms this long after another client's window has got the
    /// focus is that of an application which does not tell any more.
    static constexpr std::chrono::seconds longestSilence{1};

    struct Outputs {
        EventHandler deliver;
        /// What was typed before does not belong to what has the focus now.
        std::function<void(FocusChange)> onFocusChanged;
        /// Everything before the fence has been delivered or dropped.
        std::function<void(std::uint8_t fence)> onFencePassed;
        /// `handleTimer` is to be called at that time; replaces what was asked for before.
        std::function<void(Time)> setTimer;
    };

    /// Without `secureEntry` nobody ever follows the focus.
    SecureEntryGate(SecureEntry* secureEntry, Outputs outputs);
    ~SecureEntryGate() override;
    SecureEntryGate(const SecureEntryGate&) = delete;
    SecureEntryGate& operator=(const SecureEntryGate&) = delete;

    void handleEvent(const InputEvent& event, Time now);
    /// Another window has the keyboard. What was held back is dropped: it went to the old one.
    void handleWindowChange(Time now);
    /// A client has taken the keyboard for itself or given it back; the focus is where it was.
    void handleGrab(Time now);
    /// While it is required, what goes to anything but a text that is told to be plain is withheld.
    void setTextRequired(bool isRequired) { isTextRequired_ = isRequired; }
    /// Whose window has the focus, by any number but 0; comes some time after the window change.
    void handleFocusClient(std::uint32_t client, Time now);
    void handleFence(std::uint8_t fence, Time now);
    void handleTimer(Time now);
    /// Drops what is held back.
    void clear();

private:
    /// Counts the events that may have moved the focus: all that is held back after the same one
    /// goes to the same element.
    using Epoch = std::uint64_t;

    struct Fence {
        std::uint8_t number;
    };
    struct Held {
        std::variant<InputEvent, Fence> item;
        Epoch epoch;
        Time end;
    };

    void onFocusReport(const FocusReport& report, Time now) override;
    void loseKeyboard(FocusChange change, Time now);
    void beginEpoch(Time now);
    void hold(std::variant<InputEvent, Fence> item, Time end);
    void releaseDue(Time now);
    /// When that which may go at `end` is to go, as far as is known.
    [[nodiscard]] Time releaseTime(Time end) const;
    [[nodiscard]] std::vector<std::uint8_t> dropHeld();
    void decide(InputEvent& event, Epoch epoch, Time now);
    [[nodiscard]] bool isSecret(Epoch epoch, Time now) const;
    [[nodiscard]] bool isWithheld() const;
    [[nodiscard]] bool isLongAfterAct(Time now) const;

    SecureEntry* secureEntry_;
    Outputs outputs_;
    FocusSecrecy secrecy_ = FocusSecrecy::untold;
    bool isText_ = false; ///< a text is told to have the focus
    bool isTextRequired_ = false;
    std::optional<Time> toldAt_;
    std::optional<Time> windowChangedAt_;
    std::uint32_t focusClient_ = 0;
    std::optional<Time> secretEnd_;  ///< unless confirmed until then
    std::uint32_t secretClient_ = 0; ///< that had the focus before `secretEnd_` was set
    std::optional<Time> lastAct_;    ///< of the user, or the program's own key
    Time pendingEnd_ = Time::min();
    bool isPendingUnexpected_ = false; ///< the pending move came long after the last act
    std::deque<Held> held_;
    Epoch epoch_ = 1;
    Epoch lastSecretEpoch_ = 0; ///< of those before the present one
    /// In which typed text was dropped: the rest of the same word must not be taken for all of it.
    Epoch incompleteEpoch_ = 0;
    Time holdEnd_ = Time::min();
    Time textHoldEnd_ = Time::min();
};

} // namespace kelvora
