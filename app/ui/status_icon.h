// SPDX-License-Identifier: MIT
#pragma once

#include <QIcon>
#include <QString>

namespace kelvora {

enum class PanelShade { light, dark };

/// Where the program's own drawings are: `MenuBarIcon-SIZE.png`, shapes without a colour.
[[nodiscard]] QString statusIconDirectory();

/// The icon for the panel. Where its drawing is installed for the desktop, its name is told too, so
/// that the panel draws it in its own colour. Elsewhere it comes in a colour for a panel of that
/// shade, with an edge that keeps it readable on the other. Two letters when `directory` has no
/// drawing that can be read.
[[nodiscard]] QIcon statusIcon(PanelShade shade, const QString& directory = statusIconDirectory());

} // namespace kelvora
