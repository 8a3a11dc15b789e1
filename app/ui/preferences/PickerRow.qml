// SPDX-License-Identifier: MIT
import QtQuick
import Kelvora.Controls

/// A row with a label and a list to choose one of. `choices` are objects with the `textRole` shown
/// and the `valueRole` stored; a `value` that none of them has shows no choice.
SettingsRow {
    id: row

    required property string label
    required property var choices
    required property string textRole
    required property string valueRole
    required property var value

    /// The user chose `value`.
    signal chosen(var value)

    verticalPadding: 7

    Item {
        width: parent.width
        height: Math.max(label.height, picker.height)

        PlainText {
            id: label

            anchors.left: parent.left
            anchors.right: picker.left
            anchors.rightMargin: 16
            anchors.verticalCenter: parent.verticalCenter
            text: row.label
            Accessible.ignored: true
        }
        Picker {
            id: picker

            objectName: row.objectName + "Picker"
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            width: Math.min(implicitWidth, parent.width * 0.6)
            label: row.label
            model: row.choices
            textRole: row.textRole
            valueRole: row.valueRole
            currentIndex: row.choices.findIndex((choice) => choice[row.valueRole] === row.value)
            onActivated: (index) => row.chosen(row.choices[index][row.valueRole])
        }
    }
}
