// SPDX-License-Identifier: MIT
#include "host/linux/atspi/atspi_focus_worker.h"

#include "host/linux/atspi/atspi_focus_questions.h"
#include "host/linux/atspi/atspi_session.h"

#include <poll.h>

#include <algorithm>
#include <utility>

namespace kelvora {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds askAgainAfter{250};
constexpr milliseconds askSeldomAfter{2000};
constexpr int mostFrequentAttempts = 20;
constexpr int mostFrequentSearches = 4; // of a window that answers
constexpr int mostSearches = 8;
/// Every toolkit that tells of its focus does it together with the window's activation.
constexpr milliseconds silenceOfWindow{60};
constexpr milliseconds silenceAfterLoss{200};
constexpr milliseconds firstPause{100}; // before a lost bus is looked for again
constexpr int mostTries = 6;
constexpr milliseconds confirmAfter{500};
constexpr milliseconds endless{-1};
constexpr milliseconds longestPause{500}; // where nobody can wake

milliseconds pauseAfter(int attempts) {
    return attempts < mostFrequentAttempts ? askAgainAfter : askSeldomAfter;
}

} // namespace

AtspiFocusWorker::AtspiFocusWorker() : thread_([this] { run(); }) {}

AtspiFocusWorker::~AtspiFocusWorker() {
    isStopping_ = true;
    woken_.wake();
    thread_.join();
}

std::vector<FocusReport> AtspiFocusWorker::takeReports() {
    // The descriptor changes with the list, under the same lock: asked for every key, this costs no
    // call of the system as long as there is nothing.
    const std::lock_guard lock(mutex_);
    if (!reports_.empty())
        reported_.clear();
    return std::exchange(reports_, {});
}

void AtspiFocusWorker::run() {
    session_ = BusConnection::openSession();
    if (session_ && !session_->subscribe("type='signal',sender='org.freedesktop.DBus',"
                                         "interface='org.freedesktop.DBus',"
                                         "member='NameOwnerChanged',arg0='org.a11y.Bus'",
                                         [this](const BusSignal&) { isBusNews_ = true; }))
        session_.reset();
    while (!isStopping_) {
        awaitBus();
        if (!notices_)
            continue;
        follow();
        notices_.reset();
        unanswered_.reset();
        silentWindow_.reset();
        search_.reset();
        newcomers_ = {};
        waiting_.clear();
        lossEnd_.reset();
        confirmAt_.reset();
        {
            const std::lock_guard lock(mutex_);
            tracker_ = {};
        }
        report(FocusSecrecy::untold);
    }
}

void AtspiFocusWorker::awaitBus() {
    milliseconds limit = firstPause;
    for (int attempt = 0; !isStopping_; ++attempt) {
        isBusNews_ = false;
        notices_ = AtspiFocusNotices::connect();
        if (notices_)
            return;
        // What is just starting or just ending is asked again soon; then its news is awaited.
        pause(session_.get(), attempt < mostTries ? limit : endless);
        limit *= 2;
        if (session_ && !session_->dispatch())
            session_.reset();
        if (isBusNews_ || attempt >= mostTries) {
            attempt = 0;
            limit = firstPause;
        }
    }
}

void AtspiFocusWorker::pause(BusConnection* connection, milliseconds limit) {
    if (woken_.descriptor() < 0 && (limit < milliseconds(0) || limit > longestPause))
        limit = longestPause;
    if (connection != nullptr) {
        connection->wait(limit, woken_.descriptor());
    } else {
        pollfd wake{woken_.descriptor(), POLLIN, 0};
        poll(&wake, 1, static_cast<int>(limit.count()));
    }
    woken_.clear();
}

void AtspiFocusWorker::follow() {
    {
        const std::lock_guard lock(mutex_);
        tracker_ = {};
    }
    report(FocusSecrecy::pending);
    const auto windows = findActiveWindows(bus(), [this] { return !!isStopping_; });
    for (const AtspiReference& window : windows)
        handle({Kind::windowFound, window});
    if (windows.empty()) // they may only just have come, too
        newcomers_.addAll(bus());
    reportFocus();
    while (!isStopping_ && notices_->dispatch()) {
        while (const std::optional<AtspiFocusNotice> notice = notices_->take())
            if (!isStopping_)
                handle(*notice);
        askAgain();
        reportLoss();
        confirmSecret();
        lookAtNewcomers();
        search();
        if (!search_)
            pause(&bus(), timeToNextTask());
    }
}

milliseconds AtspiFocusWorker::timeToNextTask() const {
    std::optional<Clock::time_point> next = newcomers_.next();
    const auto consider = [&next](Clock::time_point time) {
        next = next ? std::min(*next, time) : time;
    };
    if (unanswered_)
        consider(unanswered_->next);
    if (silentWindow_)
        consider(silentWindow_->next);
    if (lossEnd_ && !unanswered_)
        consider(*lossEnd_);
    if (confirmAt_)
        consider(*confirmAt_);
    if (!next)
        return endless;
    const auto left = std::chrono::ceil<milliseconds>(*next - Clock::now());
    return std::max(left, milliseconds(0));
}

void AtspiFocusWorker::handle(const AtspiFocusNotice& notice) {
    switch (notice.kind) {
    case Kind::focusGained:
        handleFocus(notice.object);
        return;
    case Kind::roleChanged:
        if (tracker_.hasFocus(notice.object))
            handleFocus(notice.object);
        return;
    case Kind::focusLost:
        handleLoss(notice.object);
        return;
    case Kind::applicationCame:
        newcomers_.add(notice.object);
        return;
    case Kind::windowActivated:
    case Kind::windowDeactivated:
    case Kind::windowFound:
    case Kind::applicationGone:
        handleWindow(notice);
        return;
    }
}

void AtspiFocusWorker::handleFocus(const AtspiReference& object) {
    if (!tracker_.isActive(object.busName)) {
        waiting_.add({Kind::focusGained, object});
        const std::string before = tracker_.active();
        {
            const std::lock_guard lock(mutex_);
            tracker_.focusGained(object, {});
        }
        learnProcess(object.busName);
        if (tracker_.active() != before)
            followActive();
        return;
    }
    silentWindow_.reset();
    search_.reset();
    learnFocus(object, 0);
}

void AtspiFocusWorker::handleLoss(const AtspiReference& object) {
    if (!tracker_.isActive(object.busName))
        waiting_.add({Kind::focusLost, object});
    if (unanswered_ && unanswered_->object == object)
        giveUpQuestion();
    {
        const std::lock_guard lock(mutex_);
        tracker_.focusLost(object);
    }
    // Most often another object gains it at once.
    if (tracker_.isActive(object.busName))
        lossEnd_ = Clock::now() + silenceAfterLoss;
}

void AtspiFocusWorker::handleWindow(const AtspiFocusNotice& notice) {
    const std::string& busName = notice.object.busName;
    const std::string before = tracker_.active();
    newcomers_.remove(busName);
    {
        const std::lock_guard lock(mutex_);
        if (notice.kind == Kind::windowActivated)
            tracker_.windowActivated(notice.object);
        else if (notice.kind == Kind::windowDeactivated)
            tracker_.windowDeactivated(notice.object);
        else if (notice.kind == Kind::windowFound)
            tracker_.windowFound(notice.object);
        else
            tracker_.applicationGone(busName);
    }
    const bool isActivated =
        notice.kind == Kind::windowActivated || notice.kind == Kind::windowFound;
    if (!isActivated && !tracker_.hasAnyFocus(busName))
        waiting_.forget(busName);
    const bool isOther = tracker_.active() != before;
    if (isOther)
        followActive();
    if (isActivated && !tracker_.hasAnyFocus(busName) && !unanswered_) {
        search_.reset();
        silentWindow_ = {notice.object, Clock::now() + silenceOfWindow, 0, false};
    }
    if (isActivated || isOther)
        reportFocus();
    if (isActivated)
        learnProcess(busName);
}

void AtspiFocusWorker::followActive() {
    giveUpQuestion();
    silentWindow_.reset();
    search_.reset();
    for (const AtspiFocusNotice& notice : waiting_.take(tracker_.active()))
        handle(notice);
}

void AtspiFocusWorker::giveUpQuestion() {
    if (!unanswered_)
        return;
    unanswered_.reset();
    // What was typed into it may be held back still, and nobody will know any more what it was.
    report(FocusSecrecy::secret);
}

void AtspiFocusWorker::learnFocus(const AtspiReference& object, int attempts) {
    if (unanswered_ && unanswered_->object != object)
        giveUpQuestion();
    unanswered_ = {object, Clock::now() + pauseAfter(attempts), attempts + 1, false};
    reportFocus();
    learnProcess(object.busName);
    const BusReply<AtspiObjectKind> kind = askKind(bus(), object);
    if (isWithoutAnswer(kind.error))
        return;
    // Windows, pages and tabs are focused together with the text inside them. Lists that follow the
    // text beside them take its focus in their toolkit's notices, and the text does not tell again.
    const std::optional<AtspiReference> text = tracker_.lastText(object.busName);
    bool isTextFocused = false;
    if (!kind.value.isText && !kind.value.isSecret && text && *text != object) {
        const BusReply<bool> answer = askIsFocused(bus(), *text);
        isTextFocused = isWithoutAnswer(answer.error) || answer.value;
    }
    if (kind.error == BusError::gone)
        giveUpQuestion();
    unanswered_.reset();
    {
        const std::lock_guard lock(mutex_);
        if (isTextFocused)
            tracker_.returnToText(object.busName);
        else
            tracker_.focusGained(object, kind.value);
    }
    reportFocus();
}

void AtspiFocusWorker::learnProcess(const std::string& busName) {
    if (tracker_.knowsProcess(busName))
        return;
    const BusReply<std::uint32_t> process = bus().processOf(busName);
    if (!process)
        return;
    const std::lock_guard lock(mutex_);
    tracker_.setProcess(busName, static_cast<std::int32_t>(process.value));
}

void AtspiFocusWorker::askAgain() {
    if (!unanswered_ || Clock::now() < unanswered_->next)
        return;
    const Question question = *unanswered_;
    learnFocus(question.object, question.attempts);
}

void AtspiFocusWorker::search() {
    if (!silentWindow_)
        return;
    if (!search_) {
        if (Clock::now() < silentWindow_->next)
            return;
        search_.emplace(silentWindow_->object);
    }
    const AtspiFocusSearch::Step step = search_->step(bus());
    bus().clearDeadline();
    if (step == AtspiFocusSearch::Step::goOn)
        return;
    const std::optional<AtspiReference> found = search_->found();
    search_.reset();
    const int attempts = ++silentWindow_->attempts;
    silentWindow_->next = Clock::now() + pauseAfter(attempts);
    if (step == AtspiFocusSearch::Step::unanswered)
        return;
    silentWindow_->wasSearched = true;
    // A window that has only just come may still be without its content.
    if (attempts >= mostFrequentSearches)
        silentWindow_->next = Clock::now() + askSeldomAfter;
    if (found || attempts >= mostSearches)
        silentWindow_.reset();
    if (found)
        learnFocus(*found, 0);
    else
        reportFocus();
}

void AtspiFocusWorker::lookAtNewcomers() {
    for (const AtspiReference& window : newcomers_.look(bus()))
        handle({Kind::windowFound, window});
}

void AtspiFocusWorker::reportLoss() {
    if (lossEnd_ && !unanswered_ && Clock::now() >= *lossEnd_)
        reportFocus();
}

void AtspiFocusWorker::confirmSecret() {
    if (isDoubted_.exchange(false))
        confirmAt_ = Clock::now() + confirmAfter;
    if (!confirmAt_ || Clock::now() < *confirmAt_)
        return;
    confirmAt_.reset();
    const std::optional<AtspiReference> object = tracker_.secretFocus();
    if (!object || unanswered_)
        return;
    const BusReply<bool> answer = askIsFocused(bus(), *object);
    if (isWithoutAnswer(answer.error) || answer.value)
        return;
    {
        const std::lock_guard lock(mutex_);
        tracker_.focusLost(*object);
    }
    reportFocus();
}

void AtspiFocusWorker::reportFocus() {
    lossEnd_.reset();
    if (isFocusUnknown()) {
        if (lastReported_ != FocusSecrecy::pending)
            report(FocusSecrecy::pending);
        return;
    }
    // While this one was asked the focus may have gone on: then both are reported at once, so that
    // nothing passes in between. A lost bus shows again when dispatching the next time.
    if (notices_->isEmpty())
        static_cast<void>(notices_->dispatch());
    const std::lock_guard lock(mutex_);
    reports_.push_back(tracker_.report());
    if (notices_->announceFocus(tracker_.active()))
        reports_.push_back({.secrecy = FocusSecrecy::pending});
    lastReported_ = reports_.back().secrecy;
    reported_.wake();
}

void AtspiFocusWorker::report(FocusSecrecy secrecy) {
    const std::lock_guard lock(mutex_);
    reports_.push_back({.secrecy = secrecy});
    lastReported_ = secrecy;
    reported_.wake();
}

} // namespace kelvora
