// SPDX-License-Identifier: MIT
#include "app/ui/drag_guide/app_icon_badge_view.h"

#include <QFont>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>
#include <QPainterPath>
#include <QSvgRenderer>

#include <cmath>

namespace kelvora {
namespace {

constexpr double cornerRatio = 0.22; // of the edge length

/// A superellipse's corners, which run into the edges without a kink.
QPainterPath continuousRoundedSquare(double size) {
    const double radius = cornerRatio * size * 1.25;
    const double hold = radius * 0.32; // of the curve's handles to the corner itself
    QPainterPath path(QPointF(radius, 0));
    path.lineTo(size - radius, 0);
    path.cubicTo(size - hold, 0, size, hold, size, radius);
    path.lineTo(size, size - radius);
    path.cubicTo(size, size - hold, size - hold, size, size - radius, size);
    path.lineTo(radius, size);
    path.cubicTo(hold, size, 0, size - hold, 0, size - radius);
    path.lineTo(0, radius);
    path.cubicTo(0, hold, hold, 0, radius, 0);
    return path;
}

} // namespace

AppIconBadgeView::AppIconBadgeView(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
    setFile(QStringLiteral(":/kelvora/AppIcon.png"));
}

void AppIconBadgeView::setSize(double size) {
    if (size != width()) {
        QQuickItem::setSize({size, size});
        setImplicitSize(size, size);
        emit sizeChanged();
    }
}

void AppIconBadgeView::setFile(const QString& file) {
    if (file != file_) {
        file_ = file;
        picture_ = QImage(file);
        emit fileChanged();
        update();
    }
}

void AppIconBadgeView::paint(QPainter* painter) {
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    if (picture_.isNull()) {
        paintBadge(*painter);
        return;
    }
    // Scaled down in one good step; a painter's own scaling skips pixels.
    const int pixels = static_cast<int>(std::lround(width() * painter->deviceTransform().m11()));
    const QImage scaled =
        picture_.scaled(pixels, pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    QBrush brush(scaled);
    brush.setTransform(QTransform::fromScale(width() / pixels, height() / pixels));
    painter->fillPath(continuousRoundedSquare(width()), brush);
}

void AppIconBadgeView::paintBadge(QPainter& painter) const {
    const double size = width();
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor::fromRgbF(0.52F, 0.95F, 0.05F));
    painter.drawRoundedRect(QRectF(0, 0, size, size), cornerRatio * size, cornerRatio * size);

    QFont font = QGuiApplication::font();
    font.setPixelSize(std::max(1, static_cast<int>(std::lround(0.55 * size))));
    font.setWeight(QFont::Black);
    const QFontMetricsF metrics(font);
    const double letter = metrics.horizontalAdvance(u'I');
    const double mark = 0.38 * size;
    const double left = (size - letter - 0.5 - mark) / 2;
    painter.setFont(font);
    painter.setPen(Qt::black);
    painter.drawText(QRectF(left, 0, letter, size), Qt::AlignCenter | Qt::TextDontClip,
                     QStringLiteral("I"));
    QSvgRenderer check(QStringLiteral(":/kelvora/symbols/checkmark.svg"));
    check.render(&painter, QRectF(left + letter + 0.5 - 0.04 * size,
                                  (size - mark) / 2 - 0.02 * size, mark, mark));
}

} // namespace kelvora
