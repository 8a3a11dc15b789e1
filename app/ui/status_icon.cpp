// SPDX-License-Identifier: MIT
#include "app/ui/status_icon.h"

#include <QFont>
#include <QIconEngine>
#include <QImage>
#include <QPainter>
#include <QPixmap>
#include <QStandardPaths>

#include <array>

namespace kelvora {
namespace {

constexpr std::array drawnSizes{16, 18, 22, 24, 32, 36, 48}; // pixels
constexpr double edgeOpacity = 0.9;

/// The name under which the desktop's icon themes have the drawing; empty when they have not.
QString installedName() {
    const QString name = QStringLiteral("kelvora-symbolic");
    const QString file = "icons/hicolor/symbolic/apps/" + name + ".svg";
    const bool isInstalled =
        !QStandardPaths::locate(QStandardPaths::GenericDataLocation, file).isEmpty();
    return isInstalled ? name : QString();
}

/// Black on nothing, `size` pixels wide and high.
QImage letters(int size) {
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    QFont font;
    font.setBold(true);
    font.setPixelSize(size * 3 / 4);
    painter.setFont(font);
    painter.drawText(image.rect(), Qt::AlignCenter, QStringLiteral("Aa"));
    return image;
}

QImage shape(const QString& directory, int size) {
    int drawn = drawnSizes.back();
    for (const int candidate : drawnSizes) {
        if (candidate >= size) {
            drawn = candidate;
            break;
        }
    }
    const QImage image(QStringLiteral("%1/MenuBarIcon-%2.png").arg(directory).arg(drawn));
    if (image.isNull())
        return letters(size);
    return drawn == size ? image
                         : image.scaled(size, size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

QImage coloured(const QImage& shape, const QColor& colour) {
    QImage image = shape.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), colour);
    return image;
}

class StatusIconEngine final : public QIconEngine {
public:
    StatusIconEngine(PanelShade shade, QString directory)
        : name_(installedName()), directory_(std::move(directory)),
          fill_(shade == PanelShade::dark ? Qt::white : Qt::black),
          edge_(shade == PanelShade::dark ? Qt::black : Qt::white) {}

    QString iconName() override { return name_; }
    QIconEngine* clone() const override { return new StatusIconEngine(*this); }
    QList<QSize> availableSizes(QIcon::Mode /*mode*/, QIcon::State /*state*/) override {
        QList<QSize> sizes;
        for (const int size : drawnSizes)
            sizes.append({size, size});
        return sizes;
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode /*mode*/, QIcon::State /*state*/) override {
        const int side = qMin(size.width(), size.height());
        if (side <= 0)
            return {};
        const QImage shapes = shape(directory_, side);
        const QImage edge = coloured(shapes, edge_);
        QPixmap icon(shapes.size());
        icon.fill(Qt::transparent);
        QPainter painter(&icon);
        painter.setOpacity(edgeOpacity);
        for (const QPoint step : {QPoint(-1, 0), QPoint(1, 0), QPoint(0, -1), QPoint(0, 1)})
            painter.drawImage(step, edge);
        painter.setOpacity(1);
        painter.drawImage(0, 0, coloured(shapes, fill_));
        return icon;
    }

    void paint(QPainter* painter, const QRect& place, QIcon::Mode mode,
               QIcon::State state) override {
        const int side = qMin(place.width(), place.height());
        QRect square(0, 0, side, side);
        square.moveCenter(place.center());
        painter->drawPixmap(square, pixmap(square.size(), mode, state));
    }

private:
    QString name_;
    QString directory_;
    QColor fill_;
    QColor edge_;
};

} // namespace

QString statusIconDirectory() {
    return QStringLiteral(":/kelvora");
}

QIcon statusIcon(PanelShade shade, const QString& directory) {
    return QIcon(new StatusIconEngine(shade, directory));
}

} // namespace kelvora
