// SPDX-License-Identifier: MIT
#include "app/shell/app_delegate.h"
#include "host/linux/loop/worker_thread.h"
#include "tests/support/fake_desktop/fake_desktop.h"

#include <atomic>
#include <gtest/gtest.h>
#include <mutex>
#include <thread>
#include <vector>

namespace kelvora {
namespace {

/// A main thread (the test's) and the program's own worker.
class ThreadedDispatch final : public Dispatch {
public:
    bool isMainThread() const override { return std::this_thread::get_id() == main_; }
    void postToMain(std::function<void()> work) override {
        const std::lock_guard lock(mutex_);
        mainWork_.push_back(std::move(work));
    }
    void postToWorker(std::function<void()> work) override { worker_.post(std::move(work)); }
    void serveMain() {
        std::unique_lock lock(mutex_);
        const auto all = std::exchange(mainWork_, {});
        lock.unlock();
        for (const std::function<void()>& work : all)
            work();
    }

private:
    std::thread::id main_ = std::this_thread::get_id();
    std::mutex mutex_;
    std::vector<std::function<void()>> mainWork_;
    WorkerThread worker_; ///< last: its work posts to the others
};

/// Poses as a desktop that takes a little time over everything that a conversion does to it.
class SlowPoster final : public EventPoster {
public:
    struct Hold final : KeyboardHold {
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
    for (std::uint64_t window = 0; window < 40; ++window)
        desktop.windows.applications[window].kind = ApplicationKind::terminal;
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
            if (step % 7 == 3)
                desktop.windows.focus(step);
            dispatch.serveMain();
        }
        if (round % 2 == 1)
            continue; // the delegate goes while a conversion may still be running
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
