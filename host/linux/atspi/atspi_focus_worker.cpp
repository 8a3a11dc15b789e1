// SPDX-License-Identifier: MIT
#include "host/linux/atspi/atspi_focus_worker.h"

#include <poll.h>

#include <algorithm>
#include <utility>

namespace kelvora {
namespace {

using std::chrono::milliseconds;

constexpr std::uint32_t rolePasswordText = 40; // AtspiRole
constexpr milliseconds longestQuestion{100};
constexpr milliseconds askAgainAfter{250};
constexpr int mostAttempts = 20;
constexpr int mostSearches = 4; // of a window that answers
/// Every toolkit that tells of its focus does it together with the window's activation.
constexpr milliseconds silenceOfWindow{60};
constexpr milliseconds silenceAfterLoss{200};
constexpr milliseconds firstPause{100}; // before a lost bus is looked for again
constexpr int mostTries = 6;
constexpr milliseconds endless{-1};

} // namespace

AtspiFocusWorker::AtspiFocusWorker() : thread_([this] { run(); }) {}

AtspiFocusWorker::~AtspiFocusWorker() {
    isStopping_ = true;
    stopped_.wake();
    thread_.join();
}

std::optional<AtspiReference> AtspiFocusWorker::focusedElement(std::int32_t process) const {
    const std::lock_guard lock(mutex_);
    return tracker_.focusedElement(process);
}

std::optional<AtspiReference> AtspiFocusWorker::focusedElement() const {
    const std::lock_guard lock(mutex_);
    return tracker_.focusedElement();
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
        unanswered_.clear();
        silentWindows_.clear();
        search_.reset();
        {
            const std::lock_guard lock(mutex_);
            tracker_ = {};
        }
        report({.secrecy = FocusSecrecy::untold});
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
    if (connection != nullptr) {
        connection->wait(limit, stopped_.descriptor());
        return;
    }
    pollfd stop{stopped_.descriptor(), POLLIN, 0};
    poll(&stop, 1, static_cast<int>(limit.count()));
}

void AtspiFocusWorker::follow() {
    {
        const std::lock_guard lock(mutex_);
        tracker_ = {};
    }
    report({.secrecy = FocusSecrecy::ordinary});
    for (const AtspiReference& window : findActiveWindows(bus()))
        handle({Kind::windowActivated, window});
    while (!isStopping_ && notices_->dispatch()) {
        if (const std::optional<AtspiFocusNotice> notice = notices_->take()) {
            handle(*notice);
            continue;
        }
        askAgain();
        reportLoss();
        search();
        if (!search_)
            pause(&bus(), timeToNextTask());
    }
}

milliseconds AtspiFocusWorker::timeToNextTask() const {
    std::optional<Clock::time_point> next;
    const auto consider = [&next](Clock::time_point time) {
        next = next ? std::min(*next, time) : time;
    };
    for (const auto& [busName, question] : unanswered_)
        consider(question.next);
    for (const auto& [busName, window] : silentWindows_)
        consider(window.next);
    if (lossEnd_ && unanswered_.empty())
        consider(*lossEnd_);
    if (!next)
        return endless;
    const auto left = std::chrono::ceil<milliseconds>(*next - Clock::now());
    return std::max(left, milliseconds(0));
}

void AtspiFocusWorker::handle(const AtspiFocusNotice& notice) {
    const AtspiReference& object = notice.object;
    switch (notice.kind) {
    case Kind::focusGained:
        learnFocus(object, 0);
        return;
    case Kind::roleChanged:
        if (tracker_.hasFocus(object))
            learnFocus(object, 0);
        return;
    case Kind::focusLost:
    case Kind::windowActivated:
    case Kind::windowDeactivated:
    case Kind::applicationGone:
        break;
    }
    const bool wasActive = tracker_.isActive(object.busName);
    if (notice.kind == Kind::windowActivated) {
        learnProcess(object.busName);
    } else if (notice.kind != Kind::focusLost) {
        unanswered_.erase(object.busName);
        silentWindows_.erase(object.busName);
    } else if (const auto question = unanswered_.find(object.busName);
               question != unanswered_.end() && question->second.object == object) {
        unanswered_.erase(question);
    }
    FocusReport news;
    {
        const std::lock_guard lock(mutex_);
        if (notice.kind == Kind::focusLost)
            tracker_.focusLost(object);
        else if (notice.kind == Kind::windowActivated)
            tracker_.windowActivated(object);
        else if (notice.kind == Kind::windowDeactivated)
            tracker_.windowDeactivated(object);
        else
            tracker_.applicationGone(object.busName);
        if (notice.kind == Kind::windowActivated && !tracker_.hasAnyFocus(object.busName))
            silentWindows_[object.busName] = {object, Clock::now() + silenceOfWindow, 0};
        if (!wasActive && !tracker_.isActive(object.busName))
            return;
        // Most often another object gains it at once.
        if (notice.kind == Kind::focusLost) {
            if (!tracker_.hasAnyFocus(object.busName))
                lossEnd_ = Clock::now() + silenceAfterLoss;
            return;
        }
        news = tracker_.report();
    }
    report(news);
}

void AtspiFocusWorker::learnFocus(const AtspiReference& object, int attempts) {
    learnProcess(object.busName);
    silentWindows_.erase(object.busName);
    if (search_ && search_->window().busName == object.busName)
        search_.reset();
    const BusReply<AtspiObjectKind> kind = kindOf(object);
    const bool isUnanswered = kind.error == BusError::timedOut || kind.error == BusError::notAsked;
    if (isUnanswered && attempts < mostAttempts) {
        unanswered_[object.busName] = {object, Clock::now() + askAgainAfter, attempts + 1};
        return;
    }
    unanswered_.erase(object.busName);
    // Windows, pages and tabs are focused together with the text inside them.
    const std::optional<AtspiReference> text = tracker_.focusedText(object.busName);
    if (!kind.value.isText && !kind.value.isSecret && text && *text != object &&
        isStillFocused(*text))
        return;
    FocusReport news;
    {
        const std::lock_guard lock(mutex_);
        tracker_.focusGained(object, kind.value);
        if (!tracker_.isActive(object.busName))
            return;
        news = tracker_.report();
    }
    report(news);
}

BusReply<AtspiObjectKind> AtspiFocusWorker::kindOf(const AtspiReference& object) {
    bus().setDeadline(Clock::now() + longestQuestion);
    const BusReply<std::uint32_t> role = readRole(bus(), object);
    BusReply<AtspiObjectKind> kind{role.error, {}};
    if (role && role.value == rolePasswordText) {
        kind.value = {.isText = true, .isSecret = true};
    } else if (role) {
        const BusReply<std::vector<std::string>> names = readInterfaces(bus(), object);
        kind.error = names.error;
        kind.value.isText = std::ranges::find(names.value, atspi::text) != names.value.end();
    }
    bus().clearDeadline();
    return kind;
}

bool AtspiFocusWorker::isStillFocused(const AtspiReference& object) {
    bus().setDeadline(Clock::now() + longestQuestion);
    const BusReply<AtspiStates> states = readStates(bus(), object);
    bus().clearDeadline();
    return states.value.has(AtspiState::focused);
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
    const Clock::time_point now = Clock::now();
    const auto due = std::ranges::find_if(
        unanswered_, [now](const auto& entry) { return entry.second.next <= now; });
    if (due == unanswered_.end())
        return;
    const Question question = due->second;
    learnFocus(question.object, question.attempts);
}

void AtspiFocusWorker::search() {
    if (!search_) {
        const Clock::time_point now = Clock::now();
        const auto due = std::ranges::find_if(
            silentWindows_, [now](const auto& entry) { return entry.second.next <= now; });
        if (due == silentWindows_.end())
            return;
        search_.emplace(due->second.object);
        searchAttempts_ = due->second.attempts;
        silentWindows_.erase(due);
    }
    const AtspiFocusSearch::Step step = search_->step(bus());
    bus().clearDeadline();
    if (step == AtspiFocusSearch::Step::goOn)
        return;
    const AtspiReference window = search_->window();
    const std::optional<AtspiReference> found = search_->found();
    search_.reset();
    if (step == AtspiFocusSearch::Step::finished && found) {
        learnFocus(*found, 0);
        return;
    }
    // A window that has only just come may still be without its content.
    const int most = step == AtspiFocusSearch::Step::unanswered ? mostAttempts : mostSearches;
    if (searchAttempts_ + 1 < most)
        silentWindows_[window.busName] = {window, Clock::now() + askAgainAfter,
                                          searchAttempts_ + 1};
}

void AtspiFocusWorker::reportLoss() {
    if (!lossEnd_ || !unanswered_.empty() || Clock::now() < *lossEnd_)
        return;
    FocusReport news;
    {
        const std::lock_guard lock(mutex_);
        news = tracker_.report();
    }
    report(news);
}

void AtspiFocusWorker::report(const FocusReport& report) {
    lossEnd_.reset();
    const std::lock_guard lock(mutex_);
    reports_.push_back(report);
    reported_.wake();
}

} // namespace kelvora
