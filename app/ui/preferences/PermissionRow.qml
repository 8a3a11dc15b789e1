// SPDX-License-Identifier: MIT
import QtQuick
import Kelvora.Controls

/// A row that tells whether a permission is granted, and asks for it when it is not.
SettingsRow {
    id: row

    required property string title
    required property bool isGranted

    signal openSettings()

    verticalPadding: 7

    Item {
        width: parent.width
        height: Math.max(title.height, button.implicitHeight)

        Symbol {
            id: sign

            objectName: row.objectName + "Sign"
            anchors.verticalCenter: parent.verticalCenter
            width: 18
            height: 18
            name: row.isGranted ? "checkmark.circle.fill" : "exclamationmark.circle"
            color: row.isGranted ? Theme.positive : Theme.warning
        }
        PlainText {
            id: title

            anchors.left: sign.right
            anchors.leftMargin: 9
            anchors.right: state.left
            anchors.rightMargin: 12
            anchors.verticalCenter: parent.verticalCenter
            text: row.title
            Accessible.name: qsTr("%1: %2").arg(row.title).arg(state.text)
        }
        PlainText {
            id: state

            objectName: row.objectName + "State"
            anchors.right: button.visible ? button.left : parent.right
            anchors.rightMargin: button.visible ? 12 : 0
            anchors.verticalCenter: parent.verticalCenter
            text: row.isGranted ? qsTr("Granted") : qsTr("Needed")
            isSecondary: true
            Accessible.ignored: true
        }
        PushButton {
            id: button

            objectName: row.objectName + "Button"
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            visible: !row.isGranted
            text: qsTr("Open Settings")
            Accessible.description: row.title
            onClicked: row.openSettings()
        }
    }
}
