// SPDX-License-Identifier: MIT
import QtQuick
import Kelvora.Controls
import Kelvora.DragGuide

/// What hangs at the pointer while the program is dragged: its icon and its name.
Item {
    implicitWidth: content.width + 16
    implicitHeight: content.height + 8

    SoftShadow {
        anchors.fill: parent
        anchors.margins: -blurRadius
        anchors.topMargin: 3 - blurRadius
        anchors.bottomMargin: -3 - blurRadius
        blurRadius: 6
        cornerRadius: 6
        color: Qt.rgba(0, 0, 0, 0.3)
    }
    Rectangle {
        anchors.fill: parent
        radius: 6
        color: Qt.alpha(Theme.card, 0.96)
        border.width: 1
        border.color: Qt.alpha(Theme.accent, 0.6)
    }
    Row {
        id: content

        anchors.centerIn: parent
        spacing: 6

        AppIconBadgeView { size: 20 }
        Text {
            anchors.verticalCenter: parent.verticalCenter
            text: "Kelvora"
            textFormat: Text.PlainText
            font.pointSize: Theme.points(10)
            font.weight: Font.DemiBold
            color: Theme.text
        }
    }
}
