// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/atspi/atspi_focus_notices.h"
#include "host/linux/atspi/atspi_focus_search.h"
#include "host/linux/atspi/atspi_focus_tracker.h"
#include "host/linux/atspi/wake_descriptor.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <map>
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

    [[nodiscard]] std::optional<AtspiReference> focusedElement(std::int32_t process) const;
    [[nodiscard]] std::optional<AtspiReference> focusedElement() const;

    /// Readable while there are reports to take.
    [[nodiscard]] int reportDescriptor() const { return reported_.descriptor(); }
    [[nodiscard]] std::vector<FocusReport> takeReports();

private:
    using Clock = BusConnection::Clock;

    using Kind = AtspiFocusNotice::Kind;

    /// What an application is to be asked later.
    struct Question {
        AtspiReference object;
        Clock::time_point next;
        int attempts = 0; ///< that it did not answer in time
    };

    void run();
    void awaitBus();
    void follow();
    void pause(BusConnection* connection, std::chrono::milliseconds limit);
    [[nodiscard]] std::chrono::milliseconds timeToNextTask() const;

    void handle(const AtspiFocusNotice& notice);
    void learnFocus(const AtspiReference& object, int attempts);
    [[nodiscard]] BusReply<AtspiObjectKind> kindOf(const AtspiReference& object);
    [[nodiscard]] bool isStillFocused(const AtspiReference& object);
    void learnProcess(const std::string& busName);
    void askAgain();
    void search();
    void reportLoss();
    void report(const FocusReport& report);
    [[nodiscard]] BusConnection& bus() { return notices_->connection(); }

    WakeDescriptor stopped_;
    WakeDescriptor reported_;
    std::atomic<bool> isStopping_ = false;

    // The thread's own.
    std::unique_ptr<BusConnection> session_;
    bool isBusNews_ = false; ///< the accessibility bus may have come
    std::unique_ptr<AtspiFocusNotices> notices_;
    // By bus name:
    std::map<std::string, Question> unanswered_; ///< objects that have got the focus
    /// Windows that were activated without word of a focus; to be searched for it.
    std::map<std::string, Question> silentWindows_;
    std::optional<AtspiFocusSearch> search_;
    int searchAttempts_ = 0;
    /// When the active application has had no focus for long enough to say so.
    std::optional<Clock::time_point> lossEnd_;

    mutable std::mutex mutex_;
    AtspiFocusTracker tracker_; ///< written by the thread alone, under the lock
    std::vector<FocusReport> reports_;

    std::thread thread_; ///< last: it uses everything above
};

} // namespace kelvora
