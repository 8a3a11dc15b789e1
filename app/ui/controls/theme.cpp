// SPDX-License-Identifier: MIT
#include "app/ui/controls/theme.h"

#include <QEvent>
#include <QGuiApplication>
#include <QScreen>

#include <cmath>

namespace kelvora {
namespace {

/// Relative luminance of the colour, 0 to 1 (WCAG 2.1).
double luminance(const QColor& color) {
    const auto linear = [](double channel) {
        return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

bool isDarkPalette(const QPalette& palette) {
    return luminance(palette.window().color()) < luminance(palette.windowText().color());
}

/// The contrast ratio that text of ordinary size needs (WCAG 2.1, AA).
constexpr double readableContrast = 4.5;

QColor readableUnder(const QColor& text, QColor color) {
    const double textLuminance = luminance(text);
    for (int step = 0; step < 20; ++step) {
        const double other = luminance(color);
        const double contrast =
            (std::max(textLuminance, other) + 0.05) / (std::min(textLuminance, other) + 0.05);
        if (contrast >= readableContrast) {
            break;
        }
        color = textLuminance > other ? color.darker(106) : color.lighter(106);
    }
    return color;
}

/// For desktops that want dark windows but have no palette for this toolkit.
QPalette darkPalette() {
    QPalette palette(QColor(0x3d, 0x3d, 0x41), QColor(0x24, 0x24, 0x27));
    palette.setColor(QPalette::Base, QColor(0x32, 0x32, 0x36));
    palette.setColor(QPalette::WindowText, QColor(0xf4, 0xf4, 0xf6));
    palette.setColor(QPalette::Text, QColor(0xf4, 0xf4, 0xf6));
    palette.setColor(QPalette::Highlight, QColor(0x35, 0x7b, 0xe6));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    return palette;
}

} // namespace

Theme::Theme(QObject* parent) : QObject(parent) {
    connect(&colorScheme_, &PortalColorScheme::changed, this, &Theme::update);
    QCoreApplication::instance()->installEventFilter(this);
    update();
}

bool Theme::isDark() const {
    return isDarkPalette(palette_);
}

QColor Theme::secondaryText() const {
    QColor color = text();
    color.setAlphaF(0.66F);
    return color;
}

double Theme::points(double pixels) {
    const QScreen* screen = QGuiApplication::primaryScreen();
    return pixels * 72 / (screen != nullptr ? screen->logicalDotsPerInchY() : 96);
}

bool Theme::eventFilter(QObject* object, QEvent* event) {
    if (event->type() == QEvent::ApplicationPaletteChange) {
        update();
    }
    return QObject::eventFilter(object, event);
}

void Theme::update() {
    const QPalette desktop = QGuiApplication::palette();
    palette_ = colorScheme_.prefersDark() && !isDarkPalette(desktop) ? darkPalette() : desktop;
    accent_ = readableUnder(accentText(), palette_.highlight().color());
    emit changed();
}

} // namespace kelvora
