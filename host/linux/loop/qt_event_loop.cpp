// SPDX-License-Identifier: MIT
#include "host/linux/loop/qt_event_loop.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <utility>

namespace kelvora {
namespace {

class QtDescriptorWatch : public DescriptorWatch {
public:
    QtDescriptorWatch(int descriptor, std::function<void()> onReadable)
        : notifier_(new QSocketNotifier(descriptor, QSocketNotifier::Read)) {
        QObject::connect(notifier_, &QSocketNotifier::activated, notifier_,
                         [onReadable = std::move(onReadable)] { onReadable(); });
    }
    ~QtDescriptorWatch() override {
        // The watch may be ended by its own callback, which the notifier is then still calling.
        notifier_->setEnabled(false);
        notifier_->deleteLater();
    }

private:
    QSocketNotifier* notifier_;
};

} // namespace

QtEventLoop::~QtEventLoop() {
    // The loop itself does not run again for what was left to it.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

std::unique_ptr<DescriptorWatch> QtEventLoop::watchReadable(int descriptor,
                                                            std::function<void()> onReadable) {
    return std::make_unique<QtDescriptorWatch>(descriptor, std::move(onReadable));
}

} // namespace kelvora
