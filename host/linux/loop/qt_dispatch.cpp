// SPDX-License-Identifier: MIT
#include "host/linux/loop/qt_dispatch.h"

#include <QCoreApplication>
#include <QEvent>
#include <QMetaObject>
#include <QThread>

#include <utility>

namespace kelvora {

QtDispatch::QtDispatch() : worker_(std::make_unique<WorkerThread>()) {}

QtDispatch::~QtDispatch() {
    worker_.reset();
    QCoreApplication::sendPostedEvents(QCoreApplication::instance(), QEvent::MetaCall);
}

bool QtDispatch::isMainThread() const {
    return QThread::currentThread() == QCoreApplication::instance()->thread();
}

void QtDispatch::postToMain(std::function<void()> work) {
    // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDeleteLeaks): Qt owns what it allocates for it
    QMetaObject::invokeMethod(QCoreApplication::instance(), std::move(work), Qt::QueuedConnection);
}

void QtDispatch::postToWorker(std::function<void()> work) {
    worker_->post(std::move(work));
}

} // namespace kelvora
