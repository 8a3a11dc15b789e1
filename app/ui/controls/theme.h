// SPDX-License-Identifier: MIT
#pragma once

#include "app/ui/controls/portal_color_scheme.h"

#include <QColor>
#include <QObject>
#include <QPalette>
#include <QtQml/qqmlregistration.h>

namespace kelvora {

/// The colours and measures of the program's windows, from the desktop's palette: light or dark as
/// the desktop is, and changing with it. One an engine; main thread only.
class Theme : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(bool isDark READ isDark NOTIFY changed)
    Q_PROPERTY(QColor window READ window NOTIFY changed)
    Q_PROPERTY(QColor card READ card NOTIFY changed)
    Q_PROPERTY(QColor text READ text NOTIFY changed)
    Q_PROPERTY(QColor secondaryText READ secondaryText NOTIFY changed)
    Q_PROPERTY(QColor accent READ accent NOTIFY changed)
    Q_PROPERTY(QColor accentText READ accentText NOTIFY changed)
    Q_PROPERTY(QColor positive READ positive NOTIFY changed)
    Q_PROPERTY(QColor warning READ warning NOTIFY changed)

public:
    explicit Theme(QObject* parent = nullptr);

    [[nodiscard]] bool isDark() const;
    [[nodiscard]] QColor window() const { return palette_.window().color(); }
    /// Behind the rows of a group, lists and menus.
    [[nodiscard]] QColor card() const { return palette_.base().color(); }
    [[nodiscard]] QColor text() const { return palette_.windowText().color(); }
    [[nodiscard]] QColor secondaryText() const;
    /// The desktop's highlight, as far from `accentText` as reading needs.
    [[nodiscard]] QColor accent() const { return accent_; }
    [[nodiscard]] QColor accentText() const { return palette_.highlightedText().color(); }
    [[nodiscard]] QColor positive() const { return {isDark() ? "#5bd075" : "#1f7f3c"}; }
    [[nodiscard]] QColor warning() const { return {isDark() ? "#f2a852" : "#a85400"}; }

    /// The size for `font.pointSize` of letters `pixels` high; may be a fraction.
    [[nodiscard]] Q_INVOKABLE static double points(double pixels);

    bool eventFilter(QObject* object, QEvent* event) override;

signals:
    void changed();

private:
    void update();

    PortalColorScheme colorScheme_;
    QPalette palette_;
    QColor accent_;
};

} // namespace kelvora
