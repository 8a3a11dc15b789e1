// SPDX-License-Identifier: MIT
import QtQuick
import QtQuick.Templates as T
import Kelvora.Controls

/// A button that shows the choice and opens the list of choices. `model` is an array of objects with
/// a `textRole`; for index -1 no choice is shown.
T.ComboBox {
    id: picker

    /// What is chosen here, for assistive programs.
    required property string label

    readonly property real widestText: model.reduce((widest, choice) =>
        Math.max(widest, metrics.advanceWidth(choice[textRole])), 0)

    implicitWidth: Math.max(96, Math.ceil(widestText) + 1 + leftPadding + rightPadding)
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    leftPadding: 12
    rightPadding: 32
    topPadding: 7
    bottomPadding: 7

    Accessible.name: label
    Accessible.description: displayText

    FontMetrics {
        id: metrics

        font: picker.font
    }

    contentItem: Text {
        text: picker.displayText
        textFormat: Text.PlainText
        font: picker.font
        color: Theme.text
        elide: Text.ElideRight
        verticalAlignment: Text.AlignVCenter
    }
    indicator: Symbol {
        x: picker.width - width - 12
        anchors.verticalCenter: parent.verticalCenter
        width: 11
        height: 11
        name: "chevron.down"
        color: Theme.secondaryText
    }
    background: Rectangle {
        radius: 7
        color: Qt.alpha(Theme.text, picker.down ? 0.2 : picker.hovered ? 0.13 : 0.09)

        FocusRing {
            visible: picker.visualFocus
            radius: 10
        }
    }

    delegate: T.ItemDelegate {
        id: choice

        required property int index

        width: ListView.view.width
        implicitHeight: implicitContentHeight + topPadding + bottomPadding
        leftPadding: 10
        rightPadding: 30
        topPadding: 7
        bottomPadding: 7
        text: picker.textAt(index)
        font: picker.font
        highlighted: picker.highlightedIndex === index

        contentItem: Text {
            text: choice.text
            textFormat: Text.PlainText
            font: choice.font
            color: choice.highlighted ? Theme.accentText : Theme.text
            elide: Text.ElideRight
        }
        background: Rectangle {
            radius: 5
            color: choice.highlighted ? Theme.accent : "transparent"
        }
        Symbol {
            anchors.right: parent.right
            anchors.rightMargin: 10
            anchors.verticalCenter: parent.verticalCenter
            visible: picker.currentIndex === choice.index
            width: 12
            height: 12
            name: "checkmark"
            color: choice.highlighted ? Theme.accentText : Theme.text
        }
    }

    popup: T.Popup {
        y: picker.height + 4
        x: picker.width - width
        // Room for the sign at the choice, too.
        width: Math.max(picker.width, picker.widestText + 60)
        implicitHeight: Math.min(contentItem.implicitHeight + topPadding + bottomPadding, 320)
        padding: 5
        margins: 8

        contentItem: ListView {
            clip: true
            implicitHeight: contentHeight
            // Qt 6.4 crashes at the program's end over a list that has been open, when an assistive
            // program listens.
            model: picker.popup.visible ? picker.delegateModel : null
            currentIndex: picker.highlightedIndex
            boundsBehavior: Flickable.StopAtBounds
            T.ScrollBar.vertical: ScrollHandle {}
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
