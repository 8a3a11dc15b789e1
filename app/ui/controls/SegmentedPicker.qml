// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Templates as T
import Kelvora.Controls

/// A few choices side by side, one of them taken. The arrow keys move the choice.
Item {
    id: picker

    /// What is chosen here, for assistive programs.
    required property string label
    /// The texts of the choices.
    required property var titles
    property int currentIndex: 0

    /// The user took the choice at `index`.
    signal activated(int index)

    implicitHeight: row.implicitHeight + 6
    implicitWidth: row.implicitWidth + 6

    Accessible.role: Accessible.Grouping
    Accessible.name: label

    function take(index) {
        if (index >= 0 && index < titles.length) {
            activated(index)
            segments.itemAt(index).forceActiveFocus(Qt.TabFocusReason)
        }
    }

    Rectangle {
        anchors.fill: parent
        radius: 8
        color: Qt.alpha(Theme.text, 0.08)
    }
    Row {
        id: row

        anchors.fill: parent
        anchors.margins: 3

        Repeater {
            id: segments

            model: picker.titles

            T.RadioButton {
                id: segment

                required property string modelData
                required property int index

                width: row.width / picker.titles.length
                implicitWidth: title.implicitWidth + 28
                implicitHeight: title.implicitHeight + 10
                text: modelData
                checked: picker.currentIndex === index
                autoExclusive: true
                // The choice is one stop of the Tab key.
                focusPolicy: checked ? Qt.StrongFocus : Qt.ClickFocus
                activeFocusOnTab: checked

                Accessible.name: text
                Keys.onLeftPressed: picker.take(index - 1)
                Keys.onRightPressed: picker.take(index + 1)
                onClicked: picker.activated(index)

                background: Rectangle {
                    radius: 6
                    color: segment.checked ? (Theme.isDark ? Qt.alpha(Theme.text, 0.22) : Theme.card)
                         : segment.hovered ? Qt.alpha(Theme.text, 0.06) : "transparent"
                    border.width: segment.checked ? 1 : 0
                    border.color: Qt.alpha(Theme.text, 0.12)

                    FocusRing {
                        visible: segment.visualFocus
                        anchors.margins: -2
                        radius: 8
                    }
                }
                contentItem: Text {
                    id: title

                    text: segment.text
                    textFormat: Text.PlainText
                    font.weight: segment.checked ? Font.DemiBold : Font.Normal
                    color: Theme.text
                    horizontalAlignment: Text.AlignHCenter
                    verticalAlignment: Text.AlignVCenter
                    elide: Text.ElideRight
                }
            }
        }
    }
}
