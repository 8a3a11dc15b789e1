// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Templates as T
import Kelvora.Controls

/// A slim scroll bar over the right edge.
T.ScrollBar {
    id: bar

    implicitWidth: 10
    implicitHeight: 10
    padding: 2
    minimumSize: 0.08
    visible: policy !== T.ScrollBar.AlwaysOff && size < 1

    contentItem: Rectangle {
        implicitWidth: 6
        implicitHeight: 6
        radius: 3
        color: Qt.alpha(Theme.text, bar.pressed ? 0.55 : bar.hovered ? 0.45 : 0.28)
    }
}
