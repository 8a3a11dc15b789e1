// SPDX-License-Identifier: MIT
#include "app/ui/controls/soft_shadow.h"

#include <QImage>
#include <QPainter>
#include <QtMath>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace kelvora {
namespace {

/// How far `point` is outside of the rounded rectangle around (0, 0); negative inside.
double distanceToEdge(QPointF point, QSizeF half, double radius) {
    const double x = std::abs(point.x()) - half.width() + radius;
    const double y = std::abs(point.y()) - half.height() + radius;
    return std::hypot(std::max(x, 0.0), std::max(y, 0.0)) + std::min(std::max(x, y), 0.0) - radius;
}

} // namespace

SoftShadow::SoftShadow(QQuickItem* parent) : QQuickPaintedItem(parent) {
    connect(this, &SoftShadow::changed, this, [this] { update(); });
}

void SoftShadow::paint(QPainter* painter) {
    const qreal scale = painter->deviceTransform().m11(); // of the screen
    const QSizeF pixels = size() * scale;
    QImage image(qCeil(pixels.width()), qCeil(pixels.height()),
                 QImage::Format_ARGB32_Premultiplied);
    const QSizeF half = (size() - QSizeF(2, 2) * blurRadius_) / 2;
    if (image.isNull() || half.isEmpty() || blurRadius_ <= 0) {
        return;
    }
    const double deviation = blurRadius_ / 2; // of the Gaussian: next to nothing beyond two of it
    const QPointF middle(width() / 2, height() / 2);
    for (int row = 0; row < image.height(); ++row) {
        for (int column = 0; column < image.width(); ++column) {
            const QPointF point = QPointF(column + 0.5, row + 0.5) / scale - middle;
            const double distance = distanceToEdge(point, half, cornerRadius_);
            const double cover = std::erfc(distance / (deviation * std::numbers::sqrt2)) / 2;
            const int alpha = static_cast<int>(std::lround(cover * color_.alpha()));
            const QRgb pixel = qRgba(color_.red(), color_.green(), color_.blue(), alpha);
            image.setPixel(column, row, qPremultiply(pixel));
        }
    }
    image.setDevicePixelRatio(scale);
    painter->drawImage(QPointF(), image);
}

} // namespace kelvora
