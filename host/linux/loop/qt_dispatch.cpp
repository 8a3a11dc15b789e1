// SPDX-License-Identifier: MIT
#include "host/linux/loop/qt_dispatch.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QThread>

#include <utility>

namespace kelvora {

/// Work for the main thread comes and goes there as well: what it holds is never destroyed by the
/// thread that posted it.
class QtDispatch::Receiver : public QObject {
public:
    explicit Receiver(QtDispatch& owner) : owner_(owner) {}

    bool event(QEvent* event) override {
        if (event->type() != QEvent::User)
            return QObject::event(event);
        owner_.runNext();
        return true;
    }

private:
    QtDispatch& owner_;
};

QtDispatch::QtDispatch()
    : receiver_(std::make_unique<Receiver>(*this)), worker_(std::make_unique<WorkerThread>()) {}

QtDispatch::~QtDispatch() {
    worker_.reset();
    QCoreApplication::sendPostedEvents(receiver_.get(), QEvent::User);
}

bool QtDispatch::isMainThread() const {
    return QThread::currentThread() == QCoreApplication::instance()->thread();
}

void QtDispatch::postToMain(std::function<void()> work) {
    {
        const std::lock_guard lock(mutex_);
        forMain_.push_back(std::move(work));
    }
    QCoreApplication::postEvent(receiver_.get(), new QEvent(QEvent::User)); // Qt's from here on
}

void QtDispatch::runNext() {
    std::unique_lock lock(mutex_);
    const std::function<void()> work = std::move(forMain_.front());
    forMain_.pop_front();
    lock.unlock();
    work();
}

void QtDispatch::postToWorker(std::function<void()> work) {
    worker_->post(std::move(work));
}

} // namespace kelvora
