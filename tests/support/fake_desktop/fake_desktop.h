// SPDX-License-Identifier: MIT
#pragma once

#include "host/desktop.h"
#include "host/session_services.h"
#include "tests/support/fake_desktop/accessibility.h"
#include "tests/support/fake_desktop/event_hub.h"
#include "tests/support/fake_desktop/keyboard.h"
#include "tests/support/fake_desktop/layouts.h"
#include "tests/support/fake_desktop/lifecycle.h"
#include "tests/support/fake_desktop/pasteboard.h"
#include "tests/support/fake_desktop/recording_log.h"
#include "tests/support/fake_desktop/scheduler.h"
#include "tests/support/fake_desktop/session.h"
#include "tests/support/fake_desktop/windows.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <string_view>

namespace kelvora::fake {

struct Probe final : ApplicationProbe {
    Probe(Scheduler& itsScheduler, const Pasteboard& itsPasteboard)
        : scheduler(itsScheduler), pasteboard(itsPasteboard) {}

    [[nodiscard]] bool isResponding(FocusTarget /*target*/, double timeout) override {
        scheduler.pass(std::min(answerTime, timeout));
        return answerTime < timeout;
    }
    [[nodiscard]] std::optional<bool> ownsPasteboard(FocusTarget /*target*/) override {
        return pasteboard.isOfFocusedProgram();
    }

    Scheduler& scheduler;
    const Pasteboard& pasteboard;
    double answerTime = 0; ///< seconds
};

/// A whole session in memory, in virtual time: an editor with the focus, US and Russian layouts,
/// and a user whose fingers the test moves.
class FakeDesktop {
public:
    FakeDesktop() {
        windows.notifyInOrder = [this](auto notice) { events.inOrder(std::move(notice)); };
    }

    Scheduler scheduler;
    RecordingLog log;
    EventHub events{scheduler};
    Layouts layouts;
    Translator translator;
    Pasteboard pasteboard;
    Windows windows{pasteboard, scheduler};
    Accessibility accessibility{windows, scheduler};
    Keyboard keyboard{scheduler, events, layouts, windows};
    Probe probe{scheduler, pasteboard};
    SessionCalls sessionCalls;
    Permissions permissions{sessionCalls};
    Defaults defaults{sessionCalls};
    Login login;
    Addresses addresses{sessionCalls};
    Secrecy secureInput;
    Lifecycle lifecycle{sessionCalls};
    Interface interface { sessionCalls };
    bool launchedInBackground = true;
    bool hasUpdater = true;
    UserDriverDelegate* updates = nullptr; ///< who is told of updates

    [[nodiscard]] Desktop services() {
        return {scheduler, log,         events,        keyboard,   layouts, translator,
                windows,   permissions, accessibility, pasteboard, probe,   secureInput};
    }
    [[nodiscard]] SessionServices session() {
        const auto makeUpdater = [this](UserDriverDelegate& delegate) {
            updates = &delegate;
            return hasUpdater ? std::make_unique<Updater>(sessionCalls) : nullptr;
        };
        return {scheduler, defaults,  login,     addresses,   lifecycle,
                lifecycle, lifecycle, lifecycle, makeUpdater, launchedInBackground};
    }

    // What the user does, taking a user's time. Labels are those of a US board, whatever the active
    // layout makes of the keys.
    void type(std::u16string_view labels) {
        for (const char16_t label : labels) {
            strike(label);
            runFor(typingPause);
        }
    }
    void tap(KeyCode keyCode) {
        keyboard.press(keyCode);
        runFor(tapLength);
        keyboard.release(keyCode);
        runFor(typingPause);
    }
    /// Two taps of Shift; the last key goes up at the moment of return.
    void doubleShift() {
        tap(keyCode::leftShift);
        keyboard.press(keyCode::leftShift);
        runFor(tapLength);
        keyboard.release(keyCode::leftShift);
    }

    /// A key struck at once, for keys at given times: `at(0.03, [&] { strike(u'x'); })`.
    void strike(char16_t label) {
        const LabelledKey key = keyLabelled(label);
        if (key.shift)
            keyboard.press(keyCode::leftShift);
        keyboard.press(key.keyCode);
        keyboard.release(key.keyCode);
        if (key.shift)
            keyboard.release(keyCode::leftShift);
    }
    void at(double delay, std::function<void()> event) { scheduler.at(delay, std::move(event)); }
    void run() { scheduler.run(); }
    void runFor(double seconds) { scheduler.runFor(seconds); }

private:
    // Seconds from one key to the next, and from a key's press to its release.
    static constexpr double typingPause = 0.08;
    static constexpr double tapLength = 0.04;
};

} // namespace kelvora::fake
