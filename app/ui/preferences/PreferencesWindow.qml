// SPDX-License-Identifier: MIT
import QtQuick
import Kelvora.Controls

/// What the window with the preferences shows.
Rectangle {
    id: root

    required property QtObject preferences
    required property QtObject mainMenu
    required property QtObject persistentWindow

    color: Theme.window

    WindowMenuBar {
        id: menuBar

        anchors.top: parent.top
        width: parent.width
        mainMenu: root.mainMenu
        persistentWindow: root.persistentWindow
    }
    PreferencesView {
        anchors.top: menuBar.bottom
        anchors.bottom: parent.bottom
        width: parent.width
        preferences: root.preferences
    }
}
