// SPDX-License-Identifier: MIT
#pragma once

#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

namespace kelvora {

/// A mouse pointer with its shadow; the tip is `margin` right of and below the item's top-left
/// corner. Main thread only.
class MacOSCursorView : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    /// Room for the outline and the shadow.
    Q_PROPERTY(double margin READ tipMargin CONSTANT)

public:
    explicit MacOSCursorView(QQuickItem* parent = nullptr);

    [[nodiscard]] static double tipMargin();
    void paint(QPainter* painter) override;
};

} // namespace kelvora
