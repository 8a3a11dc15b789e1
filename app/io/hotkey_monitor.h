// SPDX-License-Identifier: MIT
#pragma once

#include "app/io/logger.h"
#include "app/io/weak_handle.h"
#include "core/trigger/double_shift_detector.h"
#include "core/trigger/shift_event_interpreter.h"
#include "core/trigger/typed_text_buffer.h"
#include "host/dispatch.h"
#include "host/event_source.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace kelvora {

/// Listens to the session's keyboard and mouse buttons, without ever changing an event: finds the
/// double tap of Shift, and keeps the record of what was typed before the caret. Main thread only,
/// but for the buffer, which any thread may read and swap.
class HotkeyMonitor {
public:
    HotkeyMonitor(EventSource& source, Dispatch& dispatch, LogSink& log);
    ~HotkeyMonitor();
    HotkeyMonitor(const HotkeyMonitor&) = delete;
    HotkeyMonitor& operator=(const HotkeyMonitor&) = delete;

    /// Called once per double tap, from the main queue, after the tap's last event is done with.
    std::function<void()> onTrigger;
    /// Called for every change of a Shift key, while the event is handled.
    std::function<void()> onShiftEvent;
    /// Called for every mouse button that goes down, while the event is handled. Not without a tap.
    std::function<void()> onMouseDown;

    /// Listens through a tap or, where the desktop refuses one, through monitors, which find the
    /// double tap but record no text. Does nothing when listening already.
    void start();
    /// Removes what `start` installed and forgets everything half-seen.
    void stop();

    /// Longest pause between the taps, in seconds.
    [[nodiscard]] double maximumInterval() const { return detector_.maximumInterval; }
    void setMaximumInterval(double seconds) { detector_.maximumInterval = seconds; }

    /// Null unless listening through a tap; one that the desktop switched off is still set.
    [[nodiscard]] EventTap* eventTap() const { return eventTap_.get(); }
    /// Null unless listening through a monitor of the other applications.
    [[nodiscard]] EventMonitor* globalMonitor() const { return globalMonitor_.get(); }

    /// The same buffer for the monitor's whole life; a conversion that outlives it keeps its share.
    [[nodiscard]] const std::shared_ptr<TypedTextBuffer>& typedText() const { return typedText_; }
    /// The buffer's text when the last double tap was completed, for the trigger that it is about;
    /// keys pressed before the trigger is handled are in the buffer by then. Absent when taken.
    [[nodiscard]] std::optional<std::u16string> takeTextAtTrigger() {
        return std::exchange(textAtTrigger_, std::nullopt);
    }
    /// What was typed before does not stand before the caret any more.
    void forgetTypedText();
    [[nodiscard]] DoubleShiftDetector& detector() { return detector_; }
    [[nodiscard]] ShiftEventInterpreter& interpreter() { return interpreter_; }

private:
    void installTap();
    void installMonitors();
    void handleTapEvent(const InputEvent& event);
    void handleOnMainThread(const InputEvent& event);
    void trackTyping(const InputEvent& event);
    [[nodiscard]] bool isWithinLostWord(const InputEvent& event);
    void handle(const InputEvent& event);
    void handleFlagsChanged(const InputEvent& event);
    void postTrigger();

    EventSource& source_;
    Dispatch& dispatch_;
    Logger logger_;
    std::shared_ptr<TypedTextBuffer> typedText_ = std::make_shared<TypedTextBuffer>();
    std::optional<std::u16string> textAtTrigger_;
    bool isComposing_ = false; ///< the application shows a text that is not typed yet
    bool isWordLost_ = false;  ///< the word at the caret has characters that are not known
    DoubleShiftDetector detector_{0.5};
    ShiftEventInterpreter interpreter_;
    std::unique_ptr<EventTap> eventTap_;
    std::unique_ptr<EventMonitor> globalMonitor_;
    std::unique_ptr<EventMonitor> localMonitor_;
    WeakHandleSource<HotkeyMonitor> self_{this};
};

} // namespace kelvora
