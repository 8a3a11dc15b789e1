// SPDX-License-Identifier: MIT
#include "app/ui/drag_guide/drag_guide_clock.h"

#include <QEvent>
#include <QQuickWindow>
#include <QTimerEvent>

#include <cmath>

namespace kelvora {

DragGuideClock::DragGuideClock(QQuickItem* parent) : QQuickItem(parent) {}

void DragGuideClock::setInView(bool isInView) {
    if (isInView != isInView_) {
        isInView_ = isInView;
        emit isInViewChanged();
        startOrStop();
    }
}

void DragGuideClock::setAnimationTime(double time) {
    const bool isOtherPhase = isLandingHighlight() != kelvora::isLandingHighlight(time) ||
                              hasLanded() != kelvora::hasLanded(time) ||
                              isSwitchedOn() != kelvora::isSwitchedOn(time);
    const DragIconState icon = calculateDragIconState(time);
    const CursorState cursor = calculateCursorState(time);
    const bool hasIconMoved = icon != icon_;
    const bool hasCursorMoved = cursor != cursor_;
    animationTime_ = time;
    icon_ = icon;
    cursor_ = cursor;

    // What stands still is not announced, so that it is not painted again.
    emit ticked();
    if (hasIconMoved) {
        emit iconMoved();
    }
    if (hasCursorMoved) {
        emit cursorMoved();
    }
    if (isOtherPhase) {
        emit phaseChanged();
    }
}

bool DragGuideClock::eventFilter(QObject* object, QEvent* event) {
    switch (event->type()) {
    case QEvent::Expose:
    case QEvent::Show:
    case QEvent::Hide:
    case QEvent::WindowStateChange:
        // The window itself takes the event after its filters.
        recheck_.start(0, this);
        break;
    default:
        break;
    }
    return QQuickItem::eventFilter(object, event);
}

void DragGuideClock::timerEvent(QTimerEvent* event) {
    if (event->timerId() == timer_.timerId()) {
        setAnimationTime(nextAnimationTime(animationTime_));
    } else if (event->timerId() == recheck_.timerId()) {
        recheck_.stop();
        startOrStop();
    } else {
        QQuickItem::timerEvent(event);
    }
}

void DragGuideClock::itemChange(ItemChange change, const ItemChangeData& value) {
    if (change == ItemSceneChange) {
        follow(value.window);
    } else if (change == ItemVisibleHasChanged) {
        startOrStop();
    }
    QQuickItem::itemChange(change, value);
}

void DragGuideClock::follow(QQuickWindow* window) {
    if (window_) {
        window_->removeEventFilter(this);
    }
    window_ = window;
    if (window_) {
        window_->installEventFilter(this);
    }
    startOrStop();
}

void DragGuideClock::startOrStop() {
    const bool canBeSeen = isVisible() && isInView_ && window_ && window_->isExposed() &&
                           window_->visibility() != QWindow::Hidden &&
                           window_->visibility() != QWindow::Minimized;
    if (canBeSeen == timer_.isActive()) {
        return;
    }
    if (canBeSeen) {
        timer_.start(static_cast<int>(std::lround(animationTick * 1000)), this);
    } else {
        timer_.stop();
    }
    emit isRunningChanged();
}

} // namespace kelvora
