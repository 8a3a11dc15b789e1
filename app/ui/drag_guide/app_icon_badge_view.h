// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QQuickPaintedItem>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace kelvora {

/// The program's icon, square, `size` wide; a drawn badge when there is no picture of it. Main
/// thread only.
class AppIconBadgeView : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(double size READ size WRITE setSize NOTIFY sizeChanged)
    /// The file with the picture.
    Q_PROPERTY(QString file READ file WRITE setFile NOTIFY fileChanged)

public:
    explicit AppIconBadgeView(QQuickItem* parent = nullptr);

    [[nodiscard]] double size() const { return width(); }
    void setSize(double size);
    [[nodiscard]] QString file() const { return file_; }
    void setFile(const QString& file);

    void paint(QPainter* painter) override;

signals:
    void sizeChanged();
    void fileChanged();

private:
    void paintBadge(QPainter& painter) const;

    QString file_;
    QImage picture_; ///< null: the badge is drawn
};

} // namespace kelvora
