<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ru_RU">
<context>
    <name>ManualDragPromptRow</name>
    <message>
        <source>Kelvora, to be dragged into Settings</source>
        <translation>Kelvora: перетащите в настройки</translation>
    </message>
    <message>
        <source>Drag Kelvora into Settings</source>
        <translation>Перетащите Kelvora в настройки</translation>
    </message>
    <message>
        <source>If Kelvora is missing in the list, drag this icon directly into the window above.</source>
        <translation>Если Kelvora нет в списке, перетащите этот значок прямо в окно выше.</translation>
    </message>
    <message>
        <source>Open %1</source>
        <translation>Открыть «%1»</translation>
    </message>
</context>
<context>
    <name>Menu</name>
    <message>
        <source>Kelvora</source>
        <translation>Kelvora</translation>
    </message>
    <message>
        <source>Edit</source>
        <translation>Правка</translation>
    </message>
    <message>
        <source>Enable Kelvora</source>
        <translation>Включить Kelvora</translation>
    </message>
    <message>
        <source>Preferences…</source>
        <translation>Настройки…</translation>
    </message>
    <message>
        <source>Check for Updates…</source>
        <translation>Проверить обновления…</translation>
    </message>
    <message>
        <source>Quit Kelvora</source>
        <translation>Завершить Kelvora</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>Отменить</translation>
    </message>
    <message>
        <source>Redo</source>
        <translation>Повторить</translation>
    </message>
    <message>
        <source>Cut</source>
        <translation>Вырезать</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Копировать</translation>
    </message>
    <message>
        <source>Paste</source>
        <translation>Вставить</translation>
    </message>
    <message>
        <source>Select All</source>
        <translation>Выделить всё</translation>
    </message>
</context>
<context>
    <name>PermissionDragAnimationView</name>
    <message>
        <source>System Settings</source>
        <translation>Системные настройки</translation>
    </message>
    <message>
        <source>How Kelvora is dragged into the list of %1 and switched on</source>
        <translation>Как перетащить Kelvora в список «%1» и включить</translation>
    </message>
</context>
<context>
    <name>PermissionRow</name>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>Granted</source>
        <translation>Разрешено</translation>
    </message>
    <message>
        <source>Needed</source>
        <translation>Требуется</translation>
    </message>
    <message>
        <source>Open Settings</source>
        <translation>Открыть настройки</translation>
    </message>
</context>
<context>
    <name>PermissionTarget</name>
    <message>
        <source>Input Monitoring</source>
        <translation>Мониторинг ввода</translation>
    </message>
    <message>
        <source>Accessibility</source>
        <translation>Универсальный доступ</translation>
    </message>
    <message>
        <source>Allow the applications below to monitor input from your keyboard even while using other applications.</source>
        <translation>Разрешите приложениям ниже отслеживать ввод с клавиатуры, даже когда вы пользуетесь другими приложениями.</translation>
    </message>
    <message>
        <source>Allow the applications below to control your computer even while using other applications.</source>
        <translation>Разрешите приложениям ниже управлять компьютером, даже когда вы пользуетесь другими приложениями.</translation>
    </message>
</context>
<context>
    <name>PreferencesView</name>
    <message>
        <source>General</source>
        <translation>Основные</translation>
    </message>
    <message>
        <source>Enable Kelvora</source>
        <translation>Включить Kelvora</translation>
    </message>
    <message>
        <source>Double Shift interval</source>
        <translation>Интервал двойного Shift</translation>
    </message>
    <message>
        <source>350 ms (Fast)</source>
        <translation>350 мс (быстро)</translation>
    </message>
    <message>
        <source>400 ms</source>
        <translation>400 мс</translation>
    </message>
    <message>
        <source>500 ms (macOS Default)</source>
        <translation>500 мс (по умолчанию в macOS)</translation>
    </message>
    <message>
        <source>600 ms (Relaxed)</source>
        <translation>600 мс (спокойно)</translation>
    </message>
    <message>
        <source>Launch at Login</source>
        <translation>Запускать при входе</translation>
    </message>
    <message>
        <source>Keep converted selection selected</source>
        <translation>Оставлять исправленный текст выделенным</translation>
    </message>
    <message>
        <source>How to make it work?</source>
        <translation>Как это работает?</translation>
    </message>
    <message>
        <source>Read the step-by-step setup and usage guide for Kelvora.</source>
        <translation>Прочитайте пошаговое руководство по настройке и использованию Kelvora.</translation>
    </message>
    <message>
        <source>Open How-To Guide</source>
        <translation>Открыть руководство</translation>
    </message>
    <message>
        <source>Input Sources</source>
        <translation>Источники ввода</translation>
    </message>
    <message>
        <source>Add at least two keyboard layouts in System Settings → Keyboard → Input Sources.</source>
        <translation>Добавьте хотя бы две раскладки: «Системные настройки» → «Клавиатура» → «Источники ввода».</translation>
    </message>
    <message>
        <source>First layout</source>
        <translation>Первая раскладка</translation>
    </message>
    <message>
        <source>Second layout</source>
        <translation>Вторая раскладка</translation>
    </message>
    <message>
        <source>The first two enabled keyboard layouts are selected by default.</source>
        <translation>По умолчанию выбраны первые две включённые раскладки.</translation>
    </message>
    <message>
        <source>Permissions</source>
        <translation>Разрешения</translation>
    </message>
    <message>
        <source>Accessibility</source>
        <translation>Универсальный доступ</translation>
    </message>
    <message>
        <source>Input Monitoring</source>
        <translation>Мониторинг ввода</translation>
    </message>
    <message>
        <source>How to Grant Access (Drag Animation)</source>
        <translation>Как дать доступ (анимация)</translation>
    </message>
    <message>
        <source>Accessibility and Input Monitoring are required for keyboard detection and text correction. Return here after granting access; the indicators update automatically.</source>
        <translation>«Универсальный доступ» и «Мониторинг ввода» нужны, чтобы следить за клавиатурой и исправлять текст. Дав доступ, вернитесь сюда: значки обновятся сами.</translation>
    </message>
    <message>
        <source>Use</source>
        <translation>Использование</translation>
    </message>
    <message>
        <source>Keyboard listener</source>
        <translation>Слежение за клавиатурой</translation>
    </message>
    <message>
        <source>Shift events received</source>
        <translation>Получено событий Shift</translation>
    </message>
    <message>
        <source>Double-taps detected</source>
        <translation>Распознано двойных нажатий</translation>
    </message>
    <message>
        <source>Select text and tap either Shift key twice to convert the selection. With no selection, only the word at or immediately before the caret is converted.</source>
        <translation>Выделите текст и дважды нажмите любой Shift, чтобы преобразовать выделение. Если ничего не выделено, преобразуется только слово под курсором или прямо перед ним.</translation>
    </message>
    <message>
        <source>Conversion uses the physical key positions of the two selected layouts.</source>
        <translation>Преобразование идёт по физическому расположению клавиш двух выбранных раскладок.</translation>
    </message>
</context>
<context>
    <name>PreferencesWindow</name>
    <message>
        <source>Kelvora Preferences</source>
        <translation>Настройки Kelvora</translation>
    </message>
</context>
<context>
    <name>Status</name>
    <message>
        <source>Starting…</source>
        <translation>Запуск…</translation>
    </message>
    <message>
        <source>Disabled</source>
        <translation>Выключено</translation>
    </message>
    <message>
        <source>Accessibility permission required</source>
        <translation>Требуется разрешение «Универсальный доступ»</translation>
    </message>
    <message>
        <source>Secure keyboard input is active. Leave password fields or disable Secure Keyboard Entry in Terminal.</source>
        <translation>Включён защищённый ввод с клавиатуры. Покиньте поле пароля или отключите защищённый ввод с клавиатуры в терминале.</translation>
    </message>
    <message>
        <source>Listening for double-Shift</source>
        <translation>Ожидание двойного Shift</translation>
    </message>
    <message>
        <source>Keyboard listener could not start. Quit and reopen Kelvora.</source>
        <translation>Не удалось начать слежение за клавиатурой. Завершите и снова откройте Kelvora.</translation>
    </message>
    <message>
        <source>Listening for double-Shift. This is a Wayland session: only X11 windows are served, Wayland windows are not yet.</source>
        <translation>Ожидание двойного Shift. Это сеанс Wayland: обслуживаются только окна X11, окна Wayland пока нет.</translation>
    </message>
</context>
<context>
    <name>ValueRow</name>
    <message>
        <source>%1: %2</source>
        <translation>%1: %2</translation>
    </message>
</context>
</TS>
