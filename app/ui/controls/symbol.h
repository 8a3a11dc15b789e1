// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QQuickPaintedItem>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace kelvora {

/// One of the program's own pictograms, in one colour, filling the item. Main thread only.
class Symbol : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    /// The file's name in resources/symbols, without its ending. Nothing is drawn for other names.
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)

public:
    explicit Symbol(QQuickItem* parent = nullptr);

    [[nodiscard]] QString name() const { return name_; }
    void setName(const QString& name);
    [[nodiscard]] QColor color() const { return color_; }
    void setColor(const QColor& color);

    void paint(QPainter* painter) override;

signals:
    void nameChanged();
    void colorChanged();

private:
    QString name_;
    QColor color_ = Qt::black;
};

} // namespace kelvora
