// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Templates as T
import Kelvora.Controls

/// The menus of the program's window.
T.MenuBar {
    id: menuBar

    /// A MainMenu.
    required property QtObject mainMenu
    /// A PersistentWindow.
    required property QtObject persistentWindow

    implicitHeight: contentItem.implicitHeight + topPadding + bottomPadding
    padding: 3

    Component.onCompleted: {
        for (const described of mainMenu.menus) {
            const menu = menuComponent.createObject(menuBar, { title: described.title })
            for (const item of described.items) {
                const component = item.title === "" ? separatorComponent : itemComponent
                menu.addItem(component.createObject(menu.contentItem, { item: item }))
            }
            addMenu(menu)
        }
    }

    Shortcut {
        sequence: "F10"
        onActivated: menuBar.itemAt(0).triggered()
    }

    contentItem: Row {
        Repeater {
            model: menuBar.contentModel
        }
    }
    background: Rectangle {
        color: Theme.window

        Rectangle {
            anchors.bottom: parent.bottom
            width: parent.width
            height: 1
            color: Qt.alpha(Theme.text, 0.1)
        }
    }
    delegate: T.MenuBarItem {
        id: title

        implicitWidth: implicitContentWidth + leftPadding + rightPadding
        implicitHeight: implicitContentHeight + topPadding + bottomPadding
        horizontalPadding: 10
        verticalPadding: 5

        contentItem: PlainText {
            text: title.text
            font: title.font
            wrapMode: Text.NoWrap
        }
        background: Rectangle {
            radius: 5
            color: Qt.alpha(Theme.text, title.down || title.highlighted ? 0.14 : 0)
        }
    }

    Component {
        id: menuComponent

        T.Menu {
            id: menu

            implicitWidth: 230
            implicitHeight: contentItem.implicitHeight + topPadding + bottomPadding
            padding: 5
            margins: 4
            focus: true
            // Qt 6.4 goes on opening menus under the pointer after Escape, if the pointer is on the
            // menu's title; not if that is disabled at this moment.
            onAboutToHide: {
                if (parent.hovered) {
                    parent.enabled = false
                    Qt.callLater(() => parent.enabled = true)
                }
            }

            contentItem: ListView {
                implicitHeight: contentHeight
                interactive: false
                model: menu.contentModel
                currentIndex: menu.currentIndex
            }
            background: Item {
                SoftShadow {
                    anchors.fill: parent
                    anchors.margins: -10
                    anchors.topMargin: -7
                    anchors.bottomMargin: -13
                    blurRadius: 10
                    cornerRadius: 9
                    color: Qt.rgba(0, 0, 0, 0.28)
                }
                Rectangle {
                    anchors.fill: parent
                    radius: 9
                    color: Theme.isDark ? Qt.lighter(Theme.card, 1.15) : Theme.card
                    border.width: 1
                    border.color: Qt.alpha(Theme.text, 0.16)
                }
            }
        }
    }

    Component {
        id: itemComponent

        T.MenuItem {
            id: menuItem

            required property var item
            readonly property bool isEdit: item.edit !== ""

            implicitWidth: 220
            implicitHeight: implicitContentHeight + topPadding + bottomPadding
            horizontalPadding: 10
            verticalPadding: 6
            Accessible.name: item.title

            // The window itself looks after the keys of editing.
            action: T.Action {
                text: menuItem.item.title
                shortcut: menuItem.isEdit ? "" : menuItem.item.shortcut
                onTriggered: {
                    if (!menuItem.isEdit)
                        menuBar.mainMenu.trigger(menuItem.item.action)
                    else // when the focus is back from the menu
                        Qt.callLater(() => menuBar.persistentWindow.perform(menuItem.item.edit))
                }
            }

            contentItem: Item {
                implicitHeight: label.implicitHeight

                PlainText {
                    id: label
                    text: menuItem.item.title
                    font: menuItem.font
                    wrapMode: Text.NoWrap
                    color: menuItem.highlighted ? Theme.accentText : Theme.text
                }
                PlainText {
                    anchors.right: parent.right
                    text: menuItem.item.shortcutText
                    font: menuItem.font
                    wrapMode: Text.NoWrap
                    color: menuItem.highlighted ? Theme.accentText : Theme.secondaryText
                }
            }
            background: Rectangle {
                radius: 5
                color: menuItem.highlighted ? Theme.accent : "transparent"
            }
        }
    }

    Component {
        id: separatorComponent

        T.MenuSeparator {
            required property var item

            implicitWidth: 220
            implicitHeight: 9
            contentItem: Item {
                Rectangle {
                    anchors.centerIn: parent
                    width: parent.width - 20
                    height: 1
                    color: Qt.alpha(Theme.text, 0.16)
                }
            }
        }
    }
}
