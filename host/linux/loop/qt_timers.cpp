// SPDX-License-Identifier: MIT
#include "host/linux/loop/qt_timers.h"

#include <QTimer>

#include <chrono>
#include <utility>

namespace kelvora {
namespace {

class QtTimer : public Timer {
public:
    QtTimer(std::chrono::milliseconds interval, std::function<void()> work) {
        timer_.setTimerType(Qt::CoarseTimer);
        timer_.callOnTimeout(std::move(work));
        timer_.start(interval);
    }

private:
    QTimer timer_;
};

} // namespace

std::unique_ptr<Timer> QtTimers::repeat(double seconds, std::function<void()> work) {
    const auto interval =
        std::chrono::round<std::chrono::milliseconds>(std::chrono::duration<double>(seconds));
    return std::make_unique<QtTimer>(interval, std::move(work));
}

} // namespace kelvora
