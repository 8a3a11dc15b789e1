// SPDX-License-Identifier: MIT
import QtQuick
import Kelvora.Controls
import Kelvora.DragGuide

/// Shows, in a loop, how the program is dragged into the list of programs that hold a permission,
/// and offers the program's icon for the real drag.
Column {
    id: guide

    /// The permissions: objects with `title`, `description` and `systemSettingsPane`.
    required property var targets
    /// The permission shown at first, by its place in `targets`.
    required property int initialTarget
    /// The file that stands for the program, for the real drag.
    required property url applicationFile
    /// Is the picture scrolled into view? The loop stands still otherwise.
    property alias isInView: clock.isInView

    property int targetIndex: 0
    readonly property var target: targets[targetIndex]

    /// The user asks for the settings page at `pane`.
    signal openSettings(string pane)

    spacing: 14

    Component.onCompleted: targetIndex = initialTarget

    SegmentedPicker {
        objectName: "guideTarget"
        width: parent.width
        label: qsTr("System Settings")
        titles: targets.map((target) => target.title)
        currentIndex: guide.targetIndex
        onActivated: (index) => guide.targetIndex = index
    }
    Item {
        id: picture

        /// The width that the positions of the icon and the pointer are made for: the switches of
        /// the list stand where the pointer presses.
        readonly property real designWidth: 474

        objectName: "dragGuidePicture"
        width: parent.width
        height: 250
        clip: true

        Accessible.role: Accessible.Animation
        Accessible.name: qsTr("How Kelvora is dragged into the list of %1 and switched on")
            .arg(guide.target.title)

        Rectangle {
            anchors.fill: parent
            radius: 12
            color: Qt.alpha(Theme.window, 0.95)
        }
        DragGuideClock {
            id: clock

            objectName: "dragGuideClock"
            width: picture.designWidth
            height: 250
            anchors.centerIn: parent
            scale: Math.min(1, picture.width / picture.designWidth)

            SettingsMiniature {
                width: parent.width
                // The icon lands on the middle of the program's own row.
                y: Math.max(0, 112 - ownRowCenter)
                title: guide.target.title
                description: guide.target.description
                isLandingHighlight: clock.isLandingHighlight
                hasLanded: clock.hasLanded
                isSwitchedOn: clock.isSwitchedOn
            }
            DraggedChip {
                x: clock.iconPosition.x - width / 2
                y: clock.iconPosition.y - height / 2
                opacity: clock.iconOpacity
                scale: clock.isLandingHighlight ? 0.95 : 1
            }
            MacOSCursorView {
                id: cursor

                x: clock.cursorPosition.x - margin
                y: clock.cursorPosition.y - margin
                transform: Scale {
                    origin.x: cursor.margin
                    origin.y: cursor.margin
                    xScale: clock.cursorScale
                    yScale: clock.cursorScale
                }
            }
        }
        Rectangle {
            anchors.fill: parent
            radius: 12
            color: "transparent"
            border.width: 1
            border.color: Qt.alpha(Theme.text, 0.12)
        }
    }
    ManualDragPromptRow {
        width: parent.width
        targetTitle: guide.target.title
        applicationFile: guide.applicationFile
        onOpenSettings: guide.openSettings(guide.target.systemSettingsPane)
    }
}
