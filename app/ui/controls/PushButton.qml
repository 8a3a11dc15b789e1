// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Templates as T
import Kelvora.Controls

/// A button with an optional pictogram before its text. The prominent one is what most people want.
T.Button {
    id: button

    property bool isProminent: false
    property string symbol

    readonly property color foreground: isProminent ? Theme.accentText : Theme.text

    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    leftPadding: 14
    rightPadding: 14
    topPadding: 7
    bottomPadding: 7
    opacity: enabled ? 1 : 0.5

    Accessible.name: text

    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    contentItem: Row {
        spacing: 7

        Symbol {
            anchors.verticalCenter: parent.verticalCenter
            visible: button.symbol !== ""
            width: 16
            height: 16
            name: button.symbol
            color: button.foreground
        }
        Text {
            anchors.verticalCenter: parent.verticalCenter
            text: button.text
            textFormat: Text.PlainText
            font: button.font
            color: button.foreground
        }
    }
    background: Rectangle {
        radius: 7
        color: button.isProminent
            ? (button.down ? Qt.darker(Theme.accent, 1.2)
               : button.hovered ? Qt.darker(Theme.accent, 1.08) : Theme.accent)
            : Qt.alpha(Theme.text, button.down ? 0.2 : button.hovered ? 0.13 : 0.09)

        FocusRing {
            visible: button.visualFocus
            radius: 10
        }
    }
}
