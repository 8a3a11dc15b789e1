// SPDX-License-Identifier: MIT
import QtQuick
import Kelvora.Controls

/// Shows which control the keyboard works on; around the control, which is its parent.
Rectangle {
    anchors.fill: parent
    anchors.margins: -3
    color: "transparent"
    border.width: 2
    border.color: Theme.accent
}
