// SPDX-License-Identifier: MIT
import QtQuick
import Kelvora.Controls

/// A row of a card: what stands in it gets the row's inner width, and is centred vertically. A thin
/// line parts it from the row above.
Item {
    id: row

    default property alias content: place.data
    property real verticalPadding: 10

    width: parent ? parent.width : 0
    implicitHeight: Math.max(46, place.childrenRect.height + 2 * verticalPadding)

    Rectangle {
        x: 14
        width: parent.width - x
        height: 1
        visible: !row.Positioner.isFirstItem
        color: Qt.alpha(Theme.text, 0.08)
    }
    Item {
        id: place

        x: 14
        y: (row.height - childrenRect.height) / 2
        width: parent.width - 28
        height: childrenRect.height
    }
}
