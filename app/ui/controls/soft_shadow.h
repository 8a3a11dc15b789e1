// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

namespace kelvora {

/// The blurred shadow of a rounded rectangle that stands `blurRadius` inside the item's edges.
/// Painted once, so that moving it costs no more than moving a picture. Main thread only.
class SoftShadow : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(double cornerRadius MEMBER cornerRadius_ NOTIFY changed)
    /// Where the shadow has faded away, outside and inside of the edge.
    Q_PROPERTY(double blurRadius MEMBER blurRadius_ NOTIFY changed)
    Q_PROPERTY(QColor color MEMBER color_ NOTIFY changed)

public:
    explicit SoftShadow(QQuickItem* parent = nullptr);

    void paint(QPainter* painter) override;

signals:
    void changed();

private:
    double cornerRadius_ = 0;
    double blurRadius_ = 0;
    QColor color_ = Qt::black;
};

} // namespace kelvora
