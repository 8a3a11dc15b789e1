// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

namespace kelvora {

/// Texts that parts of the program without this toolkit word, and that are shown translated: for
/// the tools that collect what there is to translate (scripts/translations).
inline constexpr const char* translatedTexts[] = {
    QT_TRANSLATE_NOOP("Menu", "Kelvora"),
    QT_TRANSLATE_NOOP("Menu", "Edit"),
    QT_TRANSLATE_NOOP("Menu", "Enable Kelvora"),
    QT_TRANSLATE_NOOP("Menu", "Preferences…"),
    QT_TRANSLATE_NOOP("Menu", "Check for Updates…"),
    QT_TRANSLATE_NOOP("Menu", "Quit Kelvora"),
    QT_TRANSLATE_NOOP("Menu", "Undo"),
    QT_TRANSLATE_NOOP("Menu", "Redo"),
    QT_TRANSLATE_NOOP("Menu", "Cut"),
    QT_TRANSLATE_NOOP("Menu", "Copy"),
    QT_TRANSLATE_NOOP("Menu", "Paste"),
    QT_TRANSLATE_NOOP("Menu", "Select All"),
    QT_TRANSLATE_NOOP("PermissionTarget", "Input Monitoring"),
    QT_TRANSLATE_NOOP("PermissionTarget", "Accessibility"),
    QT_TRANSLATE_NOOP("PermissionTarget", "Allow the applications below to monitor input from your "
                                          "keyboard even while using other applications."),
    QT_TRANSLATE_NOOP("PermissionTarget", "Allow the applications below to control your computer "
                                          "even while using other applications."),
    QT_TRANSLATE_NOOP("Status", "Starting…"),
    QT_TRANSLATE_NOOP("Status", "Disabled"),
    QT_TRANSLATE_NOOP("Status", "Accessibility permission required"),
    QT_TRANSLATE_NOOP("Status", "Secure keyboard input is active. Leave password fields or disable "
                                "Secure Keyboard Entry in Terminal."),
    QT_TRANSLATE_NOOP("Status", "Listening for double-Shift"),
    QT_TRANSLATE_NOOP("Status", "Keyboard listener could not start. Quit and reopen Kelvora."),
    QT_TRANSLATE_NOOP("Status", "Listening for double-Shift. This is a Wayland session: only X11 "
                                "windows are served, Wayland windows are not yet."),
};

} // namespace kelvora
