// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/atspi/atspi_focus_notices.h"
#include "host/linux/atspi/atspi_focus_search.h"
#include "host/linux/atspi/atspi_focus_tracker.h"
#include "host/linux/atspi/atspi_newcomers.h"
#include "host/linux/atspi/atspi_waiting_notices.h"
#include "host/linux/atspi/wake_descriptor.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace kelvora {

/// The thread of an AtspiFocusFollower. The public calls are for any thread.
class AtspiFocusWorker {
public:
    AtspiFocusWorker();
    ~AtspiFocusWorker();
    AtspiFocusWorker(const AtspiFocusWorker&) = delete;
    AtspiFocusWorker& operator=(const AtspiFocusWorker&) = delete;

    [[nodiscard]] std::optional<AtspiReference> focusedElement(std::int32_t process) const {
        const std::lock_guard lock(mutex_);
        return tracker_.focusedElement(process);
    }
    [[nodiscard]] std::optional<AtspiReference> focusedElement() const {
        const std::lock_guard lock(mutex_);
        return tracker_.focusedElement();
    }

    /// Readable while there are reports to take.
    [[nodiscard]] int reportDescriptor() const { return reported_.descriptor(); }
    [[nodiscard]] std::vector<FocusReport> takeReports();
    void confirm() {
        isDoubted_ = true;
        woken_.wake();
    }

private:
    using Clock = BusConnection::Clock;

    using Kind = AtspiFocusNotice::Kind;

    /// What the active application is to be asked later.
    struct Question {
        AtspiReference object;
        Clock::time_point next;
        int attempts = 0;
        bool wasSearched = false; ///< the window had no focus then; it may only just have come
    };

    void run();
    void awaitBus();
    void follow();
    void pause(BusConnection* connection, std::chrono::milliseconds limit);
    [[nodiscard]] std::chrono::milliseconds timeToNextTask() const;

    void handle(const AtspiFocusNotice& notice);
    void handleFocus(const AtspiReference& object);
    void handleLoss(const AtspiReference& object);
    void handleWindow(const AtspiFocusNotice& notice);
    /// Asks what the application that has just become active has told before.
    void followActive();
    void giveUpQuestion();
    void learnFocus(const AtspiReference& object, int attempts);
    void learnProcess(const std::string& busName);
    void askAgain();
    void search();
    void lookAtNewcomers();
    void reportLoss();
    void confirmSecret();
    [[nodiscard]] bool isFocusUnknown() const {
        return unanswered_ || (silentWindow_ && !silentWindow_->wasSearched);
    }
    void reportFocus();
    void report(FocusSecrecy secrecy);
    [[nodiscard]] BusConnection& bus() { return notices_->connection(); }

    WakeDescriptor woken_;
    WakeDescriptor reported_;
    std::atomic<bool> isStopping_ = false;
    std::atomic<bool> isDoubted_ = false;

    // The thread's own.
    std::unique_ptr<BusConnection> session_;
    bool isBusNews_ = false; ///< the accessibility bus may have come
    std::unique_ptr<AtspiFocusNotices> notices_;
    /// The object that has got the focus in the active application.
    std::optional<Question> unanswered_;
    /// The active window, when it was activated without word of a focus; to be searched for it.
    std::optional<Question> silentWindow_;
    std::optional<AtspiFocusSearch> search_; ///< of the silent window
    AtspiNewcomers newcomers_;
    AtspiWaitingNotices waiting_;
    std::optional<Clock::time_point> confirmAt_;
    /// When the active application has had no focus for long enough to say so.
    std::optional<Clock::time_point> lossEnd_;

    mutable std::mutex mutex_;
    AtspiFocusTracker tracker_; ///< written by the thread alone, under the lock
    std::vector<FocusReport> reports_;
    FocusSecrecy lastReported_ = FocusSecrecy::untold;

    std::thread thread_; ///< last: it uses everything above
};

} // namespace kelvora
