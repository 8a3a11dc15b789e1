// SPDX-License-Identifier: MIT
import QtQuick
import Kelvora.Controls
import Kelvora.DragGuide

/// The picture of a small switch.
Item {
    id: toggle

    property bool isOn: false

    // Not a Rectangle: the software renderer makes a rounded one of nine pieces, and where it is
    // scaled down lines show between them.
    component Capsule: SoftShadow {
        blurRadius: 0.5
    }

    width: 30
    height: 17

    Capsule {
        anchors.fill: parent
        anchors.margins: -0.5
        cornerRadius: 8.5
        // The desktop's secondary colour, at 35 %.
        color: toggle.isOn ? Theme.accent
                           : Qt.alpha(Theme.secondaryText, Theme.secondaryText.a * 0.35)

        Behavior on color { ColorAnimation { duration: 250; easing.type: Easing.InOutQuad } }
    }
    SoftShadow {
        x: circle.x - 1
        y: circle.y - 0.5
        width: circle.width + 2
        height: circle.height + 2
        blurRadius: 1.5
        cornerRadius: 6.5
        color: Qt.rgba(0, 0, 0, 0.2)
    }
    Capsule {
        id: circle

        x: (toggle.isOn ? toggle.width - 13 - 2 : 2) - 0.5
        y: 1.5
        width: 14
        height: 14
        cornerRadius: 6.5
        color: "white"

        Behavior on x { NumberAnimation { duration: 250; easing.type: Easing.InOutQuad } }
    }
}
