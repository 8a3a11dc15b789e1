// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/x11/clipboard/clipboard_owner.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <type_traits>

namespace kelvora {

/// Runs a ClipboardOwner on a thread of its own, so that other programs are answered whatever the
/// caller does. Any thread.
class ClipboardThread {
public:
    /// Null when the system has no descriptor to spare.
    [[nodiscard]] static std::unique_ptr<ClipboardThread>
    create(std::unique_ptr<ClipboardOwner> owner);
    /// Waits until what is held has been handed over, see ClipboardOwner.
    ~ClipboardThread();
    ClipboardThread(const ClipboardThread&) = delete;
    ClipboardThread& operator=(const ClipboardThread&) = delete;

    /// Runs `work` with the owner on its thread, waits for it and gives its result.
    template <typename Work>
    auto perform(const Work& work) {
        if constexpr (std::is_void_v<std::invoke_result_t<Work, ClipboardOwner&>>) {
            run([&](ClipboardOwner& owner) { work(owner); });
        } else {
            std::invoke_result_t<Work, ClipboardOwner&> result{};
            run([&](ClipboardOwner& owner) { result = work(owner); });
            return result;
        }
    }

private:
    ClipboardThread(std::unique_ptr<ClipboardOwner> owner, int wakeDescriptor);

    struct Command {
        std::function<void(ClipboardOwner&)> work;
        bool isDone = false;
    };

    void run(std::function<void(ClipboardOwner&)> work);
    void serve();
    void wake() const;
    /// Returns when there is something to do.
    void wait() const;
    /// False when the thread is to end.
    [[nodiscard]] bool runCommands();

    std::unique_ptr<ClipboardOwner> owner_;
    int wakeDescriptor_;
    std::mutex mutex_;
    std::condition_variable done_;
    std::deque<Command*> commands_; ///< of callers that wait for them
    bool isEnding_ = false;
    std::thread thread_; ///< last: it uses the others from its start
};

} // namespace kelvora
