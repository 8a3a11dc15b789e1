// SPDX-License-Identifier: MIT
import QtQuick
import Kelvora.Controls

/// A row with a label and, at the end, a value that changes by itself.
SettingsRow {
    id: row

    required property string label
    required property string value

    Item {
        width: parent.width
        height: Math.max(label.height, value.height)

        Accessible.role: Accessible.StaticText
        Accessible.name: qsTr("%1: %2").arg(row.label).arg(row.value)

        PlainText {
            id: label

            width: Math.min(implicitWidth, parent.width / 2)
            text: row.label
            Accessible.ignored: true
        }
        PlainText {
            id: value

            anchors.left: label.right
            anchors.leftMargin: 16
            anchors.right: parent.right
            text: row.value
            horizontalAlignment: Text.AlignRight
            isSecondary: true
            Accessible.ignored: true
        }
    }
}
