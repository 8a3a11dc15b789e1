// SPDX-License-Identifier: MIT
#include "app/ui/status_icon.h"

#include <QImage>
#include <QPixmap>

#include <gtest/gtest.h>

namespace kelvora {
namespace {

// Also where the drawings are missing.
TEST(StatusIcon, ReadsOnLightAndDarkPanels) {
    for (const PanelShade shade : {PanelShade::light, PanelShade::dark})
        for (const QString& directory : {statusIconDirectory(), QString("/nowhere")})
            for (const int size : {16, 22, 36, 64}) {
                SCOPED_TRACE(directory.toStdString() + " " + std::to_string(size));
                const QImage icon = statusIcon(shade, directory).pixmap(size, size).toImage();
                ASSERT_EQ(icon.size(), QSize(size, size));
                int light = 0, dark = 0, clear = 0;
                for (int pixel = 0; pixel < size * size; ++pixel) {
                    const QColor color = icon.pixelColor(pixel % size, pixel / size);
                    clear += color.alpha() < 30;
                    light += color.alpha() > 150 && color.lightness() > 200;
                    dark += color.alpha() > 150 && color.lightness() < 55;
                }
                EXPECT_GE(light, size);
                EXPECT_GE(dark, size);
                EXPECT_GE(clear, size);
            }
}

} // namespace
} // namespace kelvora
