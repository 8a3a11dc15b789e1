// SPDX-License-Identifier: MIT
import QtQuick
import Kelvora.Controls
import Kelvora.DragGuide

/// The program's icon to be really dragged into the settings, and a button that opens them.
Rectangle {
    id: row

    required property string targetTitle
    required property url applicationFile

    signal openSettings()

    implicitHeight: Math.max(icon.height, texts.height, button.height) + 20
    radius: 8
    color: Qt.alpha(Theme.text, 0.04)

    SoftShadow {
        x: icon.x - blurRadius
        y: icon.y - blurRadius + 1
        width: icon.width + 2 * blurRadius
        height: icon.height + 2 * blurRadius
        blurRadius: 3
        cornerRadius: 8
        color: Qt.rgba(0, 0, 0, 0.15)
    }
    AppIconBadgeView {
        id: icon

        objectName: "draggableIcon"
        x: 10
        anchors.verticalCenter: parent.verticalCenter
        size: 34

        Accessible.role: Accessible.Graphic
        Accessible.name: qsTr("Kelvora, to be dragged into Settings")

        Drag.dragType: Drag.Automatic
        Drag.supportedActions: Qt.CopyAction | Qt.LinkAction
        Drag.proposedAction: Qt.CopyAction
        Drag.mimeData: ({ "text/uri-list": row.applicationFile + "\r\n" })
        Drag.hotSpot: Qt.point(17, 17)
        Drag.active: dragHandler.active

        HoverHandler { cursorShape: dragHandler.active ? Qt.ClosedHandCursor : Qt.OpenHandCursor }
        DragHandler {
            id: dragHandler

            target: null
            onGrabChanged: (transition) => {
                // The picture at the pointer; taken before the drag begins.
                if (transition === PointerDevice.GrabPassive)
                    icon.grabToImage((result) => { icon.Drag.imageSource = result.url })
            }
        }
    }
    Column {
        id: texts

        anchors.left: icon.right
        anchors.leftMargin: 10
        anchors.right: button.left
        anchors.rightMargin: 10
        anchors.verticalCenter: parent.verticalCenter
        spacing: 2

        PlainText {
            width: parent.width
            text: qsTr("Drag Kelvora into Settings")
            font.pointSize: Theme.points(12)
            font.weight: Font.DemiBold
        }
        PlainText {
            width: parent.width
            text: qsTr("If Kelvora is missing in the list, drag this icon directly into the window above.")
            font.pointSize: Theme.points(10.5)
            isSecondary: true
        }
    }
    PushButton {
        id: button

        objectName: "openTargetSettings"
        anchors.right: parent.right
        anchors.rightMargin: 10
        anchors.verticalCenter: parent.verticalCenter
        isProminent: true
        text: qsTr("Open %1").arg(row.targetTitle)
        onClicked: row.openSettings()
    }
}
