// SPDX-License-Identifier: MIT
#include "app/ui/preferences/persistent_window.h"

#include <QCoreApplication>
#include <QCursor>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMetaMethod>
#include <QQuickItem>
#include <QScreen>

namespace kelvora {
namespace {

/// The key is the one of the letter, whatever layout is active: with Control held the toolkit looks
/// it up in the first layout that has Latin letters.
const char* actionOfKey(const QKeyEvent& event) {
    const Qt::KeyboardModifiers modifiers = event.modifiers();
    if (!modifiers.testFlag(Qt::ControlModifier))
        return nullptr;
    if (modifiers.testFlag(Qt::ShiftModifier))
        return event.key() == Qt::Key_Z ? "redo" : nullptr;
    switch (event.key()) {
    case Qt::Key_V:
        return "paste";
    case Qt::Key_C:
        return "copy";
    case Qt::Key_X:
        return "cut";
    case Qt::Key_A:
        return "selectAll";
    case Qt::Key_Z:
        return "undo";
    default:
        return nullptr;
    }
}

} // namespace

PersistentWindow::PersistentWindow() {
    setResizeMode(QQuickView::SizeRootObjectToView);
}

PersistentWindow::~PersistentWindow() {
    // The items of a list that is open must go before the window does: Qt 6.4 crashes over them
    // otherwise when an assistive program listens.
    for (QObject* child : findChildren<QObject*>()) {
        if (child->inherits("QQuickPopup"))
            QMetaObject::invokeMethod(child, "close");
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

bool PersistentWindow::perform(const QString& action) {
    const QByteArray signature = action.toLatin1() + "()";
    for (QQuickItem* item = activeFocusItem(); item != nullptr; item = item->parentItem()) {
        const int method = item->metaObject()->indexOfMethod(signature);
        if (method >= 0)
            return item->metaObject()->method(method).invoke(item);
    }
    return false;
}

bool PersistentWindow::performKeyEquivalent(const QKeyEvent& event) {
    const char* const action = actionOfKey(event);
    return action != nullptr && perform(QLatin1String(action));
}

void PersistentWindow::center() {
    QScreen* screen = QGuiApplication::screenAt(QCursor::pos());
    if (screen == nullptr)
        screen = QGuiApplication::primaryScreen();
    setScreen(screen);
    const QRect available = screen->availableGeometry();
    QRect frame(QPoint(), size().boundedTo(available.size()).expandedTo(minimumSize()));
    frame.moveCenter(available.center());
    setGeometry(frame);
}

bool PersistentWindow::event(QEvent* event) {
    if (event->type() == QEvent::Close) {
        event->ignore();
        hide();
        return true;
    }
    return QQuickView::event(event);
}

void PersistentWindow::keyPressEvent(QKeyEvent* event) {
    if (performKeyEquivalent(*event))
        event->accept();
    else
        QQuickView::keyPressEvent(event);
}

} // namespace kelvora
