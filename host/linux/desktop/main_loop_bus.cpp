// SPDX-License-Identifier: MIT
#include "host/linux/desktop/main_loop_bus.h"

#include <sys/epoll.h>
#include <sys/timerfd.h>
#include <systemd/sd-bus.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <utility>

namespace kelvora {

void MainLoopBus::CloseBus::operator()(sd_bus* bus) const {
    // Not flushed: that would wait for a bus that hangs.
    sd_bus_close(bus);
    sd_bus_unref(bus);
}

std::unique_ptr<MainLoopBus> MainLoopBus::open(Which which, EventLoop& loop) {
    sd_bus* handle = nullptr;
    if ((which == Which::system ? sd_bus_open_system(&handle) : sd_bus_open_user(&handle)) < 0)
        return nullptr;
    std::unique_ptr<MainLoopBus> connection(new MainLoopBus(handle));
    return connection->watch(loop) ? std::move(connection) : nullptr;
}

MainLoopBus::~MainLoopBus() = default;

bool MainLoopBus::watch(EventLoop& loop) {
    wakeUp_ = FileDescriptor(epoll_create1(EPOLL_CLOEXEC));
    timer_ = FileDescriptor(timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK));
    epoll_event event{.events = EPOLLIN, .data = {}};
    epoll_event none{};
    if (epoll_ctl(wakeUp_.get(), EPOLL_CTL_ADD, timer_.get(), &event) != 0 ||
        epoll_ctl(wakeUp_.get(), EPOLL_CTL_ADD, sd_bus_get_fd(bus_.get()), &none) != 0)
        return false;
    watch_ = loop.watchReadable(wakeUp_.get(), [this] { process(); });
    update();
    return true;
}

void MainLoopBus::update() {
    const int events = sd_bus_get_events(bus_.get());
    std::uint64_t deadline = 0; // microseconds of the monotonic clock; 0: at once
    if (events < 0 || sd_bus_get_timeout(bus_.get(), &deadline) < 0)
        return; // the connection is lost, which process() finds out
    // The flags of poll() and epoll have the same values.
    epoll_event event{.events = static_cast<std::uint32_t>(events), .data = {}};
    epoll_ctl(wakeUp_.get(), EPOLL_CTL_MOD, sd_bus_get_fd(bus_.get()), &event);

    constexpr std::uint64_t second = 1'000'000;
    itimerspec time{}; // stopped
    if (deadline != UINT64_MAX) {
        time.it_value.tv_sec = static_cast<time_t>(deadline / second);
        time.it_value.tv_nsec = std::max(1L, static_cast<long>(deadline % second * 1000));
    }
    timerfd_settime(timer_.get(), TFD_TIMER_ABSTIME, &time, nullptr);
}

void MainLoopBus::process() {
    std::uint64_t expirations = 0;
    [[maybe_unused]] const ssize_t count = read(timer_.get(), &expirations, sizeof expirations);
    int result = 0;
    do {
        result = sd_bus_process(bus_.get(), nullptr);
    } while (result > 0);
    if (result == 0) {
        update();
        return;
    }
    watch_.reset();
    if (onLost_)
        std::exchange(onLost_, nullptr)();
}

} // namespace kelvora
