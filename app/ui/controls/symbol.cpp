// SPDX-License-Identifier: MIT
#include "app/ui/controls/symbol.h"

#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

namespace kelvora {

Symbol::Symbol(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setImplicitSize(16, 16);
}

void Symbol::setName(const QString& name) {
    if (name != name_) {
        name_ = name;
        emit nameChanged();
        update();
    }
}

void Symbol::setColor(const QColor& color) {
    if (color != color_) {
        color_ = color;
        emit colorChanged();
        update();
    }
}

void Symbol::paint(QPainter* painter) {
    if (name_.isEmpty()) {
        return;
    }
    QSvgRenderer drawing(QStringLiteral(":/kelvora/symbols/%1.svg").arg(name_));
    if (!drawing.isValid()) {
        return;
    }
    const qreal scale = painter->deviceTransform().m11(); // of the screen
    QImage image((size() * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) {
        return;
    }
    image.fill(Qt::transparent);
    QPainter brush(&image);
    drawing.setAspectRatioMode(Qt::KeepAspectRatio);
    drawing.render(&brush);
    brush.setCompositionMode(QPainter::CompositionMode_SourceIn);
    brush.fillRect(image.rect(), color_);
    brush.end();
    painter->drawImage(boundingRect(), image);
}

} // namespace kelvora
