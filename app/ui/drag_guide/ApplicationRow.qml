// SPDX-License-Identifier: MIT
import QtQuick
import Kelvora.Controls
import Kelvora.DragGuide

/// A program in the list of the settings miniature: its icon, its name and a switch.
Item {
    id: row

    required property string title
    property bool isDimmed: false
    property bool isOn: true
    /// Shows the sign that the permission has just been given.
    property bool isConfirmed: false
    /// Behind the row, which is the first one of a list with rounded corners.
    property color ground: "transparent"
    default property alias icon: iconPlace.data

    implicitHeight: Math.max(18, label.implicitHeight) + 12

    Item {
        anchors.fill: parent
        clip: true

        Rectangle {
            width: parent.width
            height: parent.height + radius // only the upper corners are round
            radius: 8
            color: row.ground
        }
    }
    Item {
        id: iconPlace

        x: 10
        anchors.verticalCenter: parent.verticalCenter
        width: 18
        height: 18
    }
    Text {
        id: label

        anchors.left: iconPlace.right
        anchors.leftMargin: 8
        anchors.right: confirmation.left
        anchors.rightMargin: 8
        anchors.verticalCenter: parent.verticalCenter
        text: row.title
        textFormat: Text.PlainText
        font.pointSize: Theme.points(11.5)
        font.weight: Font.Medium
        color: row.isDimmed ? Theme.secondaryText : Theme.text
        elide: Text.ElideRight
    }
    Symbol {
        id: confirmation

        anchors.right: toggle.left
        anchors.rightMargin: 8
        anchors.verticalCenter: parent.verticalCenter
        width: 11
        height: 11
        name: "checkmark.circle.fill"
        color: Theme.positive
        opacity: row.isConfirmed ? 1 : 0
        scale: row.isConfirmed ? 1 : 0

        Behavior on opacity { NumberAnimation { duration: 250; easing.type: Easing.InOutQuad } }
        Behavior on scale { NumberAnimation { duration: 250; easing.type: Easing.InOutQuad } }
    }
    MockToggle {
        id: toggle

        anchors.right: parent.right
        anchors.rightMargin: 10
        anchors.verticalCenter: parent.verticalCenter
        isOn: row.isOn
    }
}
