// SPDX-License-Identifier: MIT
import QtQuick
import Kelvora.Controls
import Kelvora.DragGuide

/// The picture of a small switch.
Rectangle {
    id: toggle

    property bool isOn: false

    width: 30
    height: 17
    radius: height / 2
    // The desktop's secondary colour, at 35 %.
    color: isOn ? Theme.accent : Qt.alpha(Theme.secondaryText, Theme.secondaryText.a * 0.35)

    Behavior on color { ColorAnimation { duration: 250; easing.type: Easing.InOutQuad } }

    SoftShadow {
        x: circle.x - blurRadius
        y: circle.y - blurRadius + 0.5
        width: circle.width + 2 * blurRadius
        height: circle.height + 2 * blurRadius
        blurRadius: 1.5
        cornerRadius: circle.radius
        color: Qt.rgba(0, 0, 0, 0.2)
    }
    Rectangle {
        id: circle

        x: toggle.isOn ? toggle.width - width - 2 : 2
        y: 2
        width: 13
        height: 13
        radius: 6.5
        color: "white"

        Behavior on x { NumberAnimation { duration: 250; easing.type: Easing.InOutQuad } }
    }
}
