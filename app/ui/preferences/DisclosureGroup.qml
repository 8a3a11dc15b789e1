// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Templates as T
import Kelvora.Controls

/// A row whose heading shows and hides what belongs to it.
SettingsRow {
    id: group

    required property string title
    property string symbol
    property bool isExpanded: false
    default property alias details: place.data

    content: Column {
        width: parent.width
        spacing: 10

        T.Button {
            id: heading

            objectName: group.objectName + "Heading"
            width: parent.width
            implicitHeight: implicitContentHeight
            text: group.title
            checkable: true
            checked: group.isExpanded
            onToggled: group.isExpanded = checked
            font.pointSize: Qt.application.font.pointSize * 0.9
            font.weight: Font.Medium

            Accessible.name: text
            Accessible.checkable: true
            Accessible.checked: checked
            Keys.onReturnPressed: group.isExpanded = !group.isExpanded
            Keys.onLeftPressed: group.isExpanded = false
            Keys.onRightPressed: group.isExpanded = true

            contentItem: Item {
                implicitHeight: Math.max(20, title.implicitHeight)

                Symbol {
                    id: arrow

                    anchors.verticalCenter: parent.verticalCenter
                    width: 12
                    height: 12
                    name: "chevron.right"
                    color: Theme.secondaryText
                    rotation: group.isExpanded ? 90 : 0

                    Behavior on rotation { NumberAnimation { duration: 120 } }
                }
                Symbol {
                    id: sign

                    anchors.left: arrow.right
                    anchors.leftMargin: 8
                    anchors.verticalCenter: parent.verticalCenter
                    width: 18
                    height: 18
                    name: group.symbol
                    color: Theme.text
                }
                PlainText {
                    id: title

                    anchors.left: sign.right
                    anchors.leftMargin: 7
                    anchors.right: parent.right
                    anchors.verticalCenter: parent.verticalCenter
                    text: heading.text
                    font: heading.font
                    Accessible.ignored: true
                }
            }
            background: FocusRing {
                anchors.margins: -5
                visible: heading.visualFocus
                radius: 8
            }
        }
        Item {
            id: place

            width: parent.width
            height: childrenRect.height
            visible: group.isExpanded
        }
    }
}
