// SPDX-License-Identifier: MIT
import QtQuick
import Kelvora.Controls
import Kelvora.DragGuide

/// A small picture of the settings page with the list of programs that hold a permission.
Item {
    id: miniature

    required property string title
    required property string description
    property bool isLandingHighlight: false
    property bool hasLanded: false
    property bool isSwitchedOn: false

    /// Where the middle of the program's own row is.
    readonly property real ownRowCenter: list.y + rows.y + ownRow.y + ownRow.height / 2

    component Divider: Rectangle {
        x: 36
        width: parent.width - x
        height: 1
        color: Qt.alpha(Theme.text, 0.1)
    }

    implicitHeight: list.y + list.height + 10

    Rectangle {
        id: navigation

        x: 14
        y: 10
        width: arrows.width + 12
        height: arrows.height + 6
        radius: 6
        color: Qt.alpha(Theme.text, 0.08)

        Row {
            id: arrows

            anchors.centerIn: parent
            spacing: 6

            Symbol {
                anchors.verticalCenter: parent.verticalCenter
                width: 10
                height: 10
                name: "chevron.left"
                color: Theme.secondaryText
            }
            Rectangle {
                width: 1
                height: 10
                color: Qt.alpha(Theme.text, 0.15)
            }
            Symbol {
                anchors.verticalCenter: parent.verticalCenter
                width: 10
                height: 10
                name: "chevron.right"
                color: Theme.secondaryText
            }
        }
    }
    Text {
        anchors.left: navigation.right
        anchors.leftMargin: 8
        anchors.right: parent.right
        anchors.rightMargin: 14
        anchors.verticalCenter: navigation.verticalCenter
        text: miniature.title
        textFormat: Text.PlainText
        font.pointSize: Theme.points(13)
        font.weight: Font.DemiBold
        color: Theme.text
        elide: Text.ElideRight
    }
    Text {
        id: explanation

        x: 14
        anchors.top: navigation.bottom
        anchors.topMargin: 8
        width: parent.width - 28
        text: miniature.description
        textFormat: Text.PlainText
        font.pointSize: Theme.points(10.5)
        color: Theme.secondaryText
        wrapMode: Text.Wrap
    }
    Rectangle {
        id: list

        x: 14
        anchors.top: explanation.bottom
        anchors.topMargin: 8
        width: parent.width - 28
        height: rows.height
        radius: 8
        color: Qt.alpha(Theme.card, 0.85)

        Column {
            id: rows

            width: parent.width

            ApplicationRow {
                id: ownRow

                width: parent.width
                title: "Kelvora"
                isDimmed: !miniature.hasLanded
                isOn: miniature.isSwitchedOn
                isConfirmed: miniature.hasLanded && miniature.isSwitchedOn
                ground: miniature.isLandingHighlight ? Qt.alpha(Theme.accent, 0.12)
                      : miniature.hasLanded && !miniature.isSwitchedOn ? Qt.alpha(Theme.text, 0.04)
                      : "transparent"

                AppIconBadgeView {
                    size: 18
                    opacity: miniature.hasLanded ? 1 : 0.25
                }
            }
            Divider {}
            ApplicationRow {
                width: parent.width
                title: "Kelvora Installer"

                AppIconBadgeView { size: 18 }
            }
            Divider {}
            ApplicationRow {
                width: parent.width
                title: "Visual Studio Code"

                Rectangle {
                    anchors.fill: parent
                    radius: 4
                    color: Qt.rgba(0.12, 0.53, 0.9, 1)

                    Symbol {
                        anchors.centerIn: parent
                        width: 12
                        height: 12
                        name: "chevron.left.forwardslash.chevron.right"
                        color: "white"
                    }
                }
            }
            Item {
                width: parent.width
                height: 21
                clip: true

                Rectangle {
                    y: -radius // only the lower corners are round
                    width: parent.width
                    height: parent.height + radius
                    radius: 8
                    color: Qt.alpha(Theme.text, 0.03)
                }
                Row {
                    x: 10
                    anchors.verticalCenter: parent.verticalCenter
                    spacing: 12

                    Symbol {
                        width: 11
                        height: 11
                        name: "plus"
                        color: Theme.secondaryText
                    }
                    Symbol {
                        width: 11
                        height: 11
                        name: "minus"
                        color: Theme.secondaryText
                    }
                }
            }
        }
        Rectangle {
            anchors.fill: parent
            radius: 8
            color: "transparent"
            border.width: miniature.isLandingHighlight ? 1.5 : 1
            border.color: miniature.isLandingHighlight ? Qt.alpha(Theme.accent, 0.8)
                                                       : Qt.alpha(Theme.text, 0.08)
        }
    }
}
