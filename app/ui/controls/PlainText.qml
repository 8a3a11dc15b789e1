// SPDX-License-Identifier: MIT
import QtQuick
import Kelvora.Controls

/// Text that wraps and that assistive programs can read.
Text {
    property bool isSecondary: false

    color: isSecondary ? Theme.secondaryText : Theme.text
    textFormat: Text.PlainText
    wrapMode: Text.Wrap
    lineHeight: 1.1

    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
