// SPDX-License-Identifier: MIT
import QtQuick
import Kelvora.Controls

/// A row with a text that explains.
SettingsRow {
    property alias text: note.text
    property alias isSecondary: note.isSecondary

    PlainText {
        id: note

        width: parent.width
        isSecondary: true
    }
}
