// SPDX-License-Identifier: MIT
#include "app/ui/status_icon.h"

#include <QImage>
#include <QPixmap>

#include <gtest/gtest.h>

namespace kelvora {
namespace {

struct Pixels {
    int light = 0;
    int dark = 0;
    int clear = 0;
};

Pixels count(const QImage& image) {
    Pixels pixels;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor color = image.pixelColor(x, y);
            pixels.clear += color.alpha() < 30;
            pixels.light += color.alpha() > 150 && color.lightness() > 200;
            pixels.dark += color.alpha() > 150 && color.lightness() < 55;
        }
    }
    return pixels;
}

// Also where the drawings are missing.
TEST(StatusIcon, ReadsOnLightAndDarkPanels) {
    for (const PanelShade shade : {PanelShade::light, PanelShade::dark}) {
        for (const QString& directory : {statusIconDirectory(), QString("/nowhere")}) {
            for (const int size : {16, 22, 36, 64}) {
                SCOPED_TRACE(directory.toStdString() + " " + std::to_string(size));
                const QPixmap icon = statusIcon(shade, directory).pixmap(size, size);
                ASSERT_EQ(icon.size(), QSize(size, size));
                const Pixels pixels = count(icon.toImage());
                EXPECT_GE(pixels.light, size);
                EXPECT_GE(pixels.dark, size);
                EXPECT_GE(pixels.clear, size);
            }
        }
    }
}

} // namespace
} // namespace kelvora
