// SPDX-License-Identifier: MIT
import QtQuick
import Kelvora.Controls
import Kelvora.DragGuide

/// The program's settings and state.
Item {
    id: view

    /// A PreferencesModel.
    required property QtObject preferences
    property bool guideExpanded: true

    implicitWidth: 540
    implicitHeight: 720

    FormPage {
        id: page

        anchors.fill: parent
        focus: true // the keys that scroll work from the start

        SettingsSection {
            width: parent.width
            title: qsTr("General")

            SettingsRow {
                verticalPadding: 4
                ToggleSwitch {
                    objectName: "isEnabled"
                    width: parent.width
                    text: qsTr("Enable Kelvora")
                    checked: view.preferences.isEnabled
                    onToggled: view.preferences.isEnabled = checked
                }
            }
            PickerRow {
                objectName: "sensitivity"
                label: qsTr("Double Shift interval")
                choices: [
                    { text: qsTr("350 ms (Fast)"), seconds: 0.35 },
                    { text: qsTr("400 ms"), seconds: 0.4 },
                    { text: qsTr("500 ms (macOS Default)"), seconds: 0.5 },
                    { text: qsTr("600 ms (Relaxed)"), seconds: 0.6 },
                ]
                textRole: "text"
                valueRole: "seconds"
                value: view.preferences.sensitivity
                onChosen: (value) => view.preferences.sensitivity = value
            }
            SettingsRow {
                verticalPadding: 4
                ToggleSwitch {
                    objectName: "launchAtLogin"
                    width: parent.width
                    text: qsTr("Launch at Login")
                    checked: view.preferences.launchAtLogin
                    onToggled: view.preferences.launchAtLogin = checked
                }
            }
            SettingsRow {
                verticalPadding: 4
                ToggleSwitch {
                    objectName: "reselectPastedText"
                    width: parent.width
                    text: qsTr("Keep converted selection selected")
                    checked: view.preferences.reselectPastedText
                    onToggled: view.preferences.reselectPastedText = checked
                }
            }
        }

        SettingsSection {
            width: parent.width
            title: qsTr("How to make it work?")

            NoteRow {
                text: qsTr("Read the step-by-step setup and usage guide for Kelvora.")
                isSecondary: false
            }
            SettingsRow {
                verticalPadding: 7
                PushButton {
                    objectName: "openHowTo"
                    anchors.right: parent.right
                    text: qsTr("Open How-To Guide")
                    symbol: "questionmark.circle"
                    onClicked: view.preferences.openHowTo()
                }
            }
        }

        SettingsSection {
            id: inputSources

            readonly property var sources: view.preferences.inputSources
            readonly property bool hasPair: sources.length >= 2

            width: parent.width
            title: qsTr("Input Sources")

            NoteRow {
                objectName: "inputSourcesAdvice"
                visible: !inputSources.hasPair
                text: qsTr("Add at least two keyboard layouts in System Settings → Keyboard → Input Sources.")
            }
            PickerRow {
                objectName: "firstSource"
                visible: inputSources.hasPair
                label: qsTr("First layout")
                choices: inputSources.sources
                textRole: "name"
                valueRole: "id"
                value: view.preferences.firstSourceID
                onChosen: (value) => view.preferences.firstSourceID = value
            }
            PickerRow {
                objectName: "secondSource"
                visible: inputSources.hasPair
                label: qsTr("Second layout")
                choices: inputSources.sources
                textRole: "name"
                valueRole: "id"
                value: view.preferences.secondSourceID
                onChosen: (value) => view.preferences.secondSourceID = value
            }
            NoteRow {
                visible: inputSources.hasPair
                text: qsTr("The first two enabled keyboard layouts are selected by default.")
            }
        }

        SettingsSection {
            width: parent.width
            title: qsTr("Permissions")

            PermissionRow {
                objectName: "accessibility"
                title: qsTr("Accessibility")
                isGranted: view.preferences.accessibilityGranted
                onOpenSettings: view.preferences.requestAccessibility()
            }
            PermissionRow {
                objectName: "inputMonitoring"
                title: qsTr("Input Monitoring")
                isGranted: view.preferences.inputMonitoringGranted
                onOpenSettings: view.preferences.requestInputMonitoring()
            }
            DisclosureGroup {
                id: guideGroup

                objectName: "guide"
                title: qsTr("How to Grant Access (Drag Animation)")
                symbol: "hand.draw"
                isExpanded: view.guideExpanded
                onIsExpandedChanged: view.guideExpanded = isExpanded

                PermissionDragAnimationView {
                    y: 4
                    width: parent.width
                    bottomPadding: 4
                    targets: view.preferences.permissionTargets
                    // The one that is missing; Input Monitoring is the first.
                    initialTarget: view.preferences.inputMonitoringGranted ? 1 : 0
                    applicationFile: view.preferences.applicationFile
                    isInView: page.shows(guideGroup)
                    onOpenSettings: (pane) => view.preferences.openPrivacyPane(pane)
                }
            }
            NoteRow {
                text: qsTr("Accessibility and Input Monitoring are required for keyboard detection and text correction. Return here after granting access; the indicators update automatically.")
            }
        }

        SettingsSection {
            width: parent.width
            title: qsTr("Use")

            ValueRow {
                objectName: "hotkeyStatus"
                label: qsTr("Keyboard listener")
                value: view.preferences.hotkeyStatus
            }
            ValueRow {
                objectName: "shiftEventCount"
                label: qsTr("Shift events received")
                value: String(view.preferences.shiftEventCount)
            }
            ValueRow {
                objectName: "doubleTapCount"
                label: qsTr("Double-taps detected")
                value: String(view.preferences.doubleTapCount)
            }
            NoteRow {
                text: qsTr("Select text and tap either Shift key twice to convert the selection. With no selection, only the word at or immediately before the caret is converted.")
                isSecondary: false
            }
            NoteRow {
                text: qsTr("Conversion uses the physical key positions of the two selected layouts.")
            }
        }

        SettingsSection {
            objectName: "statusMessage"
            width: parent.width
            visible: view.preferences.hasStatusMessage

            NoteRow {
                text: view.preferences.statusMessage
                Accessible.role: Accessible.AlertMessage
                Accessible.name: text
            }
        }
    }
}
