// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Templates as T
import Kelvora.Controls

/// A column of sections that scrolls when the window is smaller, also to where the keyboard goes.
Rectangle {
    id: page

    default property alias sections: column.data

    readonly property real margin: 20
    readonly property real widest: 600

    /// Is a part of `item` scrolled into view? Bindings follow the scrolling.
    function shows(item) {
        void [flickable.contentY, column.height] // what `top` depends on
        const top = item.mapToItem(flickable, 0, 0).y
        return top < flickable.height && top + item.height > 0
    }

    function scrollTo(y) {
        flickable.contentY = Math.max(0, Math.min(y, flickable.contentHeight - flickable.height))
    }

    function reveal(item) {
        for (let above = item; above !== column; above = above.parent) {
            if (!above)
                return // not of this page
        }
        const top = item.mapToItem(column, 0, 0).y + column.y
        const bottom = top + item.height
        const room = page.margin
        if (top - room < flickable.contentY)
            scrollTo(top - room)
        else if (bottom + room > flickable.contentY + flickable.height)
            scrollTo(Math.min(top - room, bottom + room - flickable.height))
    }

    readonly property Item focusItem: Window.activeFocusItem
    onFocusItemChanged: if (focusItem) reveal(focusItem)

    color: Theme.window

    Keys.onPressed: (event) => {
        const pageful = flickable.height * 0.9
        switch (event.key) {
        case Qt.Key_PageDown: scrollTo(flickable.contentY + pageful); break
        case Qt.Key_PageUp: scrollTo(flickable.contentY - pageful); break
        case Qt.Key_Home: scrollTo(0); break
        case Qt.Key_End: scrollTo(flickable.contentHeight); break
        default: return
        }
        event.accepted = true
    }

    Flickable {
        id: flickable

        objectName: "page"
        anchors.fill: parent
        clip: true
        contentWidth: width
        contentHeight: column.height + 2 * page.margin
        // Pulling the page with the mouse would get into the way of dragging the icon.
        interactive: false
        onHeightChanged: page.scrollTo(contentY)
        onContentHeightChanged: page.scrollTo(contentY)

        T.ScrollBar.vertical: ScrollHandle {
            parent: page
            anchors.top: parent.top
            anchors.right: parent.right
            anchors.bottom: parent.bottom
        }

        Column {
            id: column

            y: page.margin
            anchors.horizontalCenter: parent.horizontalCenter
            width: Math.min(parent.width - 2 * page.margin, page.widest)
            spacing: 22
        }
    }
    WheelHandler {
        target: null
        acceptedDevices: PointerDevice.Mouse | PointerDevice.TouchPad
        onWheel: (event) => page.scrollTo(flickable.contentY
            - (event.pixelDelta.y !== 0 ? event.pixelDelta.y : event.angleDelta.y * 0.6))
    }
    DragHandler {
        id: finger

        property real start: 0

        target: null
        xAxis.enabled: false
        acceptedDevices: PointerDevice.TouchScreen
        onActiveChanged: start = flickable.contentY
        onActiveTranslationChanged: page.scrollTo(start - activeTranslation.y)
    }
}
