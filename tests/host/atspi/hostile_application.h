// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/atspi/atspi_reference.h"
#include "tests/support/real_desktop/child_process.h"
#include "tests/support/real_desktop/real_desktop.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

struct sd_bus;
struct sd_bus_message;

namespace kelvora {

/// What an application does wrong when its text is changed.
enum class Misdeed {
    none,
    refusesInsertion,    ///< an error
    ignoresInsertion,    ///< says that it has done it
    cutsInsertion,       ///< to what its greatest length leaves: two characters
    padsInsertion,       ///< one character more
    altersInsertion,     ///< other characters
    ignoresDeletion,     ///< says that it has done it
    correctsAtDeletion,  ///< what was put in before
    stopsAtInsertion,    ///< answers nothing from there on until `goOn`
    stopsAfterInsertion, ///< has done it, then the same
    stopsAndRefuses,     ///< the insertion, when it goes on
    stopsAndCuts,
    stopsAtDeletion,
    isTypedInto,   ///< its user replaces the selection just before
    hasNoMarks,    ///< for one line or for many, as all of its toolkit
    refusesHalves, ///< has no marks, and does not give the first 10,000: that would halve one
    refusesToRead, ///< has no marks, and gives no text
};

/// An accessibility bus with one application on it, whose one text counts code points: "one two
/// three" with "two" selected; it is a paragraph between two others. It is this process's
/// accessibility bus while it exists.
class HostileApplication {
public:
    explicit HostileApplication(Misdeed misdeed);
    ~HostileApplication();
    HostileApplication(const HostileApplication&) = delete;
    HostileApplication& operator=(const HostileApplication&) = delete;

    [[nodiscard]] AtspiReference object() const { return object_; }
    /// Does all that it was asked to meanwhile.
    void goOn() { isStopped_ = false; }
    [[nodiscard]] std::u32string text() const;
    void setText(std::u32string text);
    /// With the caret at the end. Empty: what is selected is in both neighbours.
    void select(int begin, int end);
    /// Calls that wait for an answer, so far.
    [[nodiscard]] int callCount() const { return callCount_; }

    int serve(sd_bus_message* message);

private:
    void run();
    void stop();
    int edit(sd_bus_message* message, bool isInsertion);
    void insert(int position, std::u32string text);
    void erase(int begin, int end);

    Misdeed misdeed_;
    real::TemporaryDirectory directory_;
    std::unique_ptr<real::ChildProcess> daemon_;
    AtspiReference object_;
    sd_bus* bus_ = nullptr;
    std::atomic<bool> isStopped_ = false;
    std::atomic<bool> isEnding_ = false;
    std::atomic<int> callCount_ = 0;
    mutable std::mutex mutex_;
    std::u32string text_ = U"one two three";
    int selectionBegin_ = 4;
    int selectionEnd_ = 7;
    int caret_ = 7;
    int isSelectedAround_ = 0;
    std::thread thread_;
};

} // namespace kelvora
