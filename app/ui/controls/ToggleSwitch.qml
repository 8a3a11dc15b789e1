// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Templates as T
import Kelvora.Controls

/// A row with a text and a switch at its end; the whole row switches.
T.Switch {
    id: control

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: Math.max(implicitContentHeight, indicator.height) + topPadding + bottomPadding
    rightPadding: indicator.width + 14

    Accessible.name: text

    Keys.onReturnPressed: { control.toggle(); control.toggled() }

    contentItem: PlainText {
        text: control.text
        font: control.font
        verticalAlignment: Text.AlignVCenter
        Accessible.ignored: true
    }
    indicator: Rectangle {
        x: control.width - width
        anchors.verticalCenter: parent.verticalCenter
        width: 42
        height: 24
        radius: height / 2
        color: control.checked ? Theme.accent : Qt.alpha(Theme.text, control.hovered ? 0.28 : 0.22)
        opacity: control.enabled ? 1 : 0.5

        Behavior on color { ColorAnimation { duration: 120 } }

        Rectangle {
            readonly property real travel: parent.width - width - 4

            x: 2 + control.visualPosition * travel
            y: 2
            width: 20
            height: 20
            radius: 10
            color: "white"
            border.width: 1
            border.color: Qt.rgba(0, 0, 0, 0.12)

            Behavior on x {
                enabled: !control.pressed
                NumberAnimation { duration: 120; easing.type: Easing.InOutQuad }
            }
        }
        FocusRing {
            visible: control.visualFocus
            radius: height / 2
        }
    }
}
