// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>

namespace kelvora {

/// What the poster and the event source of one X server know of each other. The server carries no
/// user data on events, but RECORD names the client that posted one: events from the poster's
/// connection carry the mark of the last event that it was given. Any thread.
class X11PostingMarks {
public:
    /// Resource id base of the connection that posts marked events; 0 while there is none.
    std::atomic<std::uint32_t> markedClient{0};
    std::atomic<std::int64_t> mark{0};
    /// That of the connection that delivers the user's held keys: typing, but not from where it
    /// seems to come.
    std::atomic<std::uint32_t> replayingClient{0};
    /// The source of the last key press that was not ours: another program's XTEST keys, or a
    /// keyboard.
    std::atomic<bool> userTypesThroughXTest{false};
    /// The focused application holds the keyboard for a list of completions, and passes on what is
    /// typed.
    std::atomic<bool> isPopupOpen{false};

    /// A tap listens: fences will pass.
    std::atomic<bool> hasTap{false};

    /// The number for the next fence, a NoOperation of the marked client.
    [[nodiscard]] std::uint8_t nextFence() {
        const std::lock_guard lock(mutex_);
        return ++sent_;
    }

    /// The event source has come to a fence, maybe one that nobody waits for any more.
    void fencePassed(std::uint8_t fence) {
        const std::lock_guard lock(mutex_);
        passed_ = fence;
        changed_.notify_all();
    }

    /// Waits until the last fence sent has passed. False when the time is over before. One at a
    /// time.
    [[nodiscard]] bool waitForFence(std::uint8_t fence, std::chrono::milliseconds limit) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, limit, [&] { return passed_ == fence; });
    }

    /// Called on the main thread for every key that the user lets go of, not for those of either
    /// client. Set it before listening.
    std::function<void(std::uint8_t keycode)> onUserKeyRelease;

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::uint8_t sent_ = 0;   ///< wraps
    std::uint8_t passed_ = 0; ///< the last one
};

} // namespace kelvora
