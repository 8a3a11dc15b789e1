// SPDX-License-Identifier: MIT
#pragma once

#include "app/ui/drag_guide/drag_guide_animation.h"

#include <QBasicTimer>
#include <QPointF>
#include <QPointer>
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

namespace kelvora {

/// Runs the drag guide's loop while it can be seen, and tells what to show. It cannot be seen while
/// the item or its window is hidden, minimised or on another workspace, or while `isInView` is
/// false; the time then stands still. Main thread only.
class DragGuideClock : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    /// Set from outside: is the item in the part of the page that is scrolled into view?
    Q_PROPERTY(bool isInView READ isInView WRITE setInView NOTIFY isInViewChanged)
    Q_PROPERTY(bool isRunning READ isRunning NOTIFY isRunningChanged)
    /// Seconds since the loop began.
    Q_PROPERTY(double animationTime READ animationTime WRITE setAnimationTime NOTIFY ticked)
    Q_PROPERTY(QPointF iconPosition READ iconPosition NOTIFY iconMoved)
    Q_PROPERTY(double iconOpacity READ iconOpacity NOTIFY iconMoved)
    Q_PROPERTY(QPointF cursorPosition READ cursorPosition NOTIFY cursorMoved)
    Q_PROPERTY(double cursorScale READ cursorScale NOTIFY cursorMoved)
    Q_PROPERTY(bool isLandingHighlight READ isLandingHighlight NOTIFY phaseChanged)
    Q_PROPERTY(bool hasLanded READ hasLanded NOTIFY phaseChanged)
    Q_PROPERTY(bool isSwitchedOn READ isSwitchedOn NOTIFY phaseChanged)

public:
    explicit DragGuideClock(QQuickItem* parent = nullptr);

    [[nodiscard]] bool isInView() const { return isInView_; }
    void setInView(bool isInView);
    [[nodiscard]] bool isRunning() const { return timer_.isActive(); }
    [[nodiscard]] double animationTime() const { return animationTime_; }
    void setAnimationTime(double time);
    [[nodiscard]] QPointF iconPosition() const { return {icon_.x, icon_.y}; }
    [[nodiscard]] double iconOpacity() const { return icon_.opacity; }
    [[nodiscard]] QPointF cursorPosition() const { return {cursor_.x, cursor_.y}; }
    [[nodiscard]] double cursorScale() const { return cursor_.scale; }
    [[nodiscard]] bool isLandingHighlight() const {
        return kelvora::isLandingHighlight(animationTime_);
    }
    [[nodiscard]] bool hasLanded() const { return kelvora::hasLanded(animationTime_); }
    [[nodiscard]] bool isSwitchedOn() const { return kelvora::isSwitchedOn(animationTime_); }

    bool eventFilter(QObject* object, QEvent* event) override;

signals:
    void isInViewChanged();
    void isRunningChanged();
    void ticked();
    void iconMoved();
    void cursorMoved();
    void phaseChanged();

protected:
    void timerEvent(QTimerEvent* event) override;
    void itemChange(ItemChange change, const ItemChangeData& value) override;

private:
    void follow(QQuickWindow* window);
    void startOrStop();

    QPointer<QQuickWindow> window_;
    QBasicTimer timer_;
    QBasicTimer recheck_; ///< at the next turn of the event loop
    bool isInView_ = true;
    double animationTime_ = 0;
    DragIconState icon_ = calculateDragIconState(0);
    CursorState cursor_ = calculateCursorState(0);
};

} // namespace kelvora
