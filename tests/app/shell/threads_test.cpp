// SPDX-License-Identifier: MIT
#include "app/shell/app_delegate.h"
#include "tests/support/fake_desktop/fake_desktop.h"

#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace kelvora {
namespace {

/// A queue of work that any thread fills and one thread serves.
class WorkQueue {
public:
    void post(std::function<void()> work) {
        const std::lock_guard lock(mutex_);
        work_.push_back(std::move(work));
        changed_.notify_one();
    }
    /// The work that waits, without waiting for any.
    std::deque<std::function<void()>> take() {
        const std::lock_guard lock(mutex_);
        return std::exchange(work_, {});
    }
    /// Serves the queue until a piece of work ends it.
    void serve(const std::atomic<bool>& ended) {
        while (!ended) {
            std::unique_lock lock(mutex_);
            changed_.wait(lock, [this] { return !work_.empty(); });
            const std::function<void()> work = std::move(work_.front());
            work_.pop_front();
            lock.unlock();
            work();
        }
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<std::function<void()>> work_;
};

/// A main thread (the test's) and a worker that really is another thread.
class ThreadedDispatch final : public Dispatch {
public:
    ThreadedDispatch() : worker_([this] { workerQueue_.serve(ended_); }) {}
    ~ThreadedDispatch() override {
        workerQueue_.post([this] { ended_ = true; });
        worker_.join();
    }
    bool isMainThread() const override { return std::this_thread::get_id() == main_; }
    void postToMain(std::function<void()> work) override { mainQueue_.post(std::move(work)); }
    void postToWorker(std::function<void()> work) override { workerQueue_.post(std::move(work)); }
    void serveMain() {
        for (const std::function<void()>& work : mainQueue_.take()) {
            work();
        }
    }

private:
    std::thread::id main_ = std::this_thread::get_id();
    WorkQueue mainQueue_;
    WorkQueue workerQueue_;
    std::atomic<bool> ended_ = false;
    std::thread worker_;
};

/// Poses as a desktop that takes a little time over everything that a conversion does to it.
class SlowPoster final : public EventPoster {
public:
    class Hold final : public KeyboardHold {
    public:
        [[nodiscard]] bool settle() override { return true; }
        [[nodiscard]] bool hasFocus() override { return true; }
        [[nodiscard]] bool hasHeldKeys() override { return false; }
        [[nodiscard]] bool hasFailed() override { return false; }
    };

    std::atomic<int> postedCount = 0;

    std::optional<InputEvent> createKeyEvent(KeyCode keyCode, KeyDirection) override {
        return InputEvent{.keyCode = keyCode, .text = {}};
    }
    void post(const InputEvent&) override { ++postedCount; }
    EventFlags modifierState() override { return 0; }
    void sleep(double) override { std::this_thread::yield(); }
    std::unique_ptr<KeyboardHold> holdKeyboard(FocusTarget) override {
        return std::make_unique<Hold>();
    }
};

void waitForConversion(const AppDelegate& app, ThreadedDispatch& dispatch) {
    while (app.conversionInProgress()) {
        std::this_thread::yield();
        dispatch.serveMain();
    }
}

// For ThreadSanitizer: keys, focus changes, triggers and the end of the program on the main thread
// while conversions run beside it.
TEST(Threads, ConversionRunsBesideTheMainThread) {
    fake::FakeDesktop desktop;
    SlowPoster poster;
    int finished = 0;
    // Only the typed-text path: the other services in memory are for one thread.
    for (std::uint64_t window = 0; window < 40; ++window) {
        desktop.windows.applications[window].kind = ApplicationKind::terminal;
    }
    for (int round = 0; round < 20; ++round) {
        ThreadedDispatch dispatch;
        const Desktop all = desktop.services();
        AppDelegate app({dispatch, all.log, all.eventSource, poster, all.inputSources,
                         all.keyTranslator, all.workspace, all.permissions, all.accessibility,
                         all.pasteboard, all.applicationProbe, all.secureInput},
                        desktop.session(), desktop.interface);
        app.launch();
        const auto observation = app.model().observe([&](AppModelProperty property) {
            finished += property == AppModelProperty::statusMessage ? 1 : 0;
        });
        for (std::uint64_t step = 0; step < 40; ++step) {
            desktop.type(u"ghbdtn");
            app.hotkey().onTrigger();
            if (step % 7 == 3) {
                desktop.windows.focus(step);
            }
            dispatch.serveMain();
        }
        if (round % 2 == 1) {
            continue; // the delegate goes while a conversion may still be running
        }
        waitForConversion(app, dispatch);
        desktop.type(u"ghbdtn");
        app.hotkey().onTrigger();
        waitForConversion(app, dispatch);
    }
    EXPECT_GE(poster.postedCount, 10);
    EXPECT_GE(finished, 10);
}

} // namespace
} // namespace kelvora
