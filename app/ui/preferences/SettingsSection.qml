// SPDX-License-Identifier: MIT
import QtQuick
import Kelvora.Controls

/// Rows in a card, with an optional heading above it.
Column {
    id: section

    property string title
    default property alias rows: rowColumn.data

    spacing: 8

    Accessible.role: Accessible.Grouping
    Accessible.name: title

    PlainText {
        x: 4
        width: parent.width - 8
        visible: section.title !== ""
        text: section.title
        font.weight: Font.DemiBold
        Accessible.role: Accessible.Heading
    }
    Rectangle {
        width: parent.width
        height: rowColumn.height
        radius: 12
        color: Theme.card
        border.width: 1
        border.color: Qt.alpha(Theme.text, Theme.isDark ? 0.07 : 0.09)

        Column {
            id: rowColumn

            width: parent.width
        }
    }
}
