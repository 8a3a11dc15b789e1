// SPDX-License-Identifier: MIT
#include "app/ui/drag_guide/mac_os_cursor_view.h"

#include <QPainter>
#include <QPainterPath>

namespace kelvora {
namespace {

constexpr QSizeF frame(13, 21);
constexpr double margin = 4; // around the frame
constexpr double shadowRadius = 1.5;
constexpr double shadowOffset = 1;
constexpr double shadowOpacity = 0.35;

QPainterPath arrow() {
    QPainterPath path;
    path.addPolygon(
        QPolygonF({{0, 0}, {0, 16}, {4.2, 12.2}, {8.2, 20}, {10.8, 18.6}, {6.8, 11}, {12.2, 11}}));
    path.closeSubpath();
    return path;
}

} // namespace

MacOSCursorView::MacOSCursorView(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setImplicitSize(frame.width() + 2 * margin, frame.height() + 2 * margin);
    setAntialiasing(true);
}

double MacOSCursorView::tipMargin() {
    return margin;
}

void MacOSCursorView::paint(QPainter* painter) {
    painter->translate(margin, margin);
    painter->setRenderHint(QPainter::Antialiasing);
    const QPainterPath path = arrow();

    // Layers of widening outlines fade out as a blur does.
    constexpr int layers = 4;
    const QColor shade = QColor::fromRgbF(0, 0, 0, static_cast<float>(shadowOpacity / layers));
    for (int layer = 1; layer <= layers; ++layer) {
        const double width = 1.4 + 2 * shadowRadius * layer / layers;
        painter->setPen(QPen(shade, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter->setBrush(shade);
        painter->drawPath(path.translated(0, shadowOffset));
    }
    painter->setPen(QPen(Qt::black, 1.4));
    painter->setBrush(Qt::white);
    painter->drawPath(path);
}

} // namespace kelvora
