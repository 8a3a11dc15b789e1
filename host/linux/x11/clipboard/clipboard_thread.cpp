// SPDX-License-Identifier: MIT
#include "host/linux/x11/clipboard/clipboard_thread.h"

#include <array>
#include <cerrno>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>
#include <utility>

namespace kelvora {
namespace {

constexpr std::chrono::milliseconds handOverLimit{1500};

} // namespace

std::unique_ptr<ClipboardThread> ClipboardThread::create(std::unique_ptr<ClipboardOwner> owner) {
    const int descriptor = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (descriptor < 0)
        return nullptr;
    return std::unique_ptr<ClipboardThread>(new ClipboardThread(std::move(owner), descriptor));
}

ClipboardThread::ClipboardThread(std::unique_ptr<ClipboardOwner> owner, int wakeDescriptor)
    : owner_(std::move(owner)), wakeDescriptor_(wakeDescriptor), thread_([this] { serve(); }) {}

ClipboardThread::~ClipboardThread() {
    {
        const std::lock_guard lock(mutex_);
        isEnding_ = true;
    }
    wake();
    thread_.join();
    close(wakeDescriptor_);
}

void ClipboardThread::run(std::function<void(ClipboardOwner&)> work) {
    Command command{std::move(work)};
    std::unique_lock lock(mutex_);
    commands_.push_back(&command);
    wake();
    done_.wait(lock, [&] { return command.isDone; });
}

void ClipboardThread::serve() {
    while (runCommands()) {
        // Commands may have left events that the connection has read already, so process() stands
        // between them and the wait.
        owner_->process();
        wait();
    }
    owner_->handOver(handOverLimit);
}

bool ClipboardThread::runCommands() {
    std::unique_lock lock(mutex_);
    while (!commands_.empty()) {
        Command& command = *commands_.front();
        commands_.pop_front();
        lock.unlock();
        command.work(*owner_);
        lock.lock();
        command.isDone = true;
        done_.notify_all();
    }
    return !isEnding_;
}

void ClipboardThread::wake() const {
    const std::uint64_t one = 1;
    // Fails only when so many wakes are pending that one more changes nothing.
    static_cast<void>(write(wakeDescriptor_, &one, sizeof one) == 0);
}

void ClipboardThread::wait() const {
    std::array<pollfd, 2> readable{
        {{owner_->descriptor(), POLLIN, 0}, {wakeDescriptor_, POLLIN, 0}}};
    int limit = -1;
    if (const auto deadline = owner_->nextDeadline()) {
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(*deadline - ClipboardClient::Clock::now());
        limit = static_cast<int>(std::max<std::int64_t>(left.count(), 0));
    }
    poll(readable.data(), readable.size(), limit);
    std::uint64_t wakes = 0;
    static_cast<void>(read(wakeDescriptor_, &wakes, sizeof wakes) == 0);
}

} // namespace kelvora
