<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="uk_UA">
<context>
    <name>ManualDragPromptRow</name>
    <message>
        <source>Kelvora, to be dragged into Settings</source>
        <translation>Kelvora: перетягніть у налаштування</translation>
    </message>
    <message>
        <source>Drag Kelvora into Settings</source>
        <translation>Перетягніть Kelvora у налаштування</translation>
    </message>
    <message>
        <source>If Kelvora is missing in the list, drag this icon directly into the window above.</source>
        <translation>Якщо Kelvora немає у списку, перетягніть цей значок прямо у вікно вище.</translation>
    </message>
    <message>
        <source>Open %1</source>
        <translation>Відкрити «%1»</translation>
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
        <translation>Зміни</translation>
    </message>
    <message>
        <source>Enable Kelvora</source>
        <translation>Увімкнути Kelvora</translation>
    </message>
    <message>
        <source>Preferences…</source>
        <translation>Налаштування…</translation>
    </message>
    <message>
        <source>Check for Updates…</source>
        <translation>Перевірити оновлення…</translation>
    </message>
    <message>
        <source>Quit Kelvora</source>
        <translation>Вийти з Kelvora</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>Скасувати</translation>
    </message>
    <message>
        <source>Redo</source>
        <translation>Повторити</translation>
    </message>
    <message>
        <source>Cut</source>
        <translation>Вирізати</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Копіювати</translation>
    </message>
    <message>
        <source>Paste</source>
        <translation>Вставити</translation>
    </message>
    <message>
        <source>Select All</source>
        <translation>Виділити все</translation>
    </message>
</context>
<context>
    <name>PermissionDragAnimationView</name>
    <message>
        <source>System Settings</source>
        <translation>Системні параметри</translation>
    </message>
    <message>
        <source>How Kelvora is dragged into the list of %1 and switched on</source>
        <translation>Як перетягнути Kelvora до списку «%1» й увімкнути</translation>
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
        <translation>Дозволено</translation>
    </message>
    <message>
        <source>Needed</source>
        <translation>Потрібно</translation>
    </message>
    <message>
        <source>Open Settings</source>
        <translation>Відкрити налаштування</translation>
    </message>
</context>
<context>
    <name>PermissionTarget</name>
    <message>
        <source>Input Monitoring</source>
        <translation>Моніторинг введення</translation>
    </message>
    <message>
        <source>Accessibility</source>
        <translation>Доступність</translation>
    </message>
    <message>
        <source>Allow the applications below to monitor input from your keyboard even while using other applications.</source>
        <translation>Дозвольте програмам нижче відстежувати введення з клавіатури, навіть коли ви користуєтеся іншими програмами.</translation>
    </message>
    <message>
        <source>Allow the applications below to control your computer even while using other applications.</source>
        <translation>Дозвольте програмам нижче керувати комп’ютером, навіть коли ви користуєтеся іншими програмами.</translation>
    </message>
</context>
<context>
    <name>PreferencesView</name>
    <message>
        <source>General</source>
        <translation>Загальні</translation>
    </message>
    <message>
        <source>Enable Kelvora</source>
        <translation>Увімкнути Kelvora</translation>
    </message>
    <message>
        <source>Double Shift interval</source>
        <translation>Інтервал подвійного Shift</translation>
    </message>
    <message>
        <source>350 ms (Fast)</source>
        <translation>350 мс (швидко)</translation>
    </message>
    <message>
        <source>400 ms</source>
        <translation>400 мс</translation>
    </message>
    <message>
        <source>500 ms (macOS Default)</source>
        <translation>500 мс (типово в macOS)</translation>
    </message>
    <message>
        <source>600 ms (Relaxed)</source>
        <translation>600 мс (спокійно)</translation>
    </message>
    <message>
        <source>Launch at Login</source>
        <translation>Запускати при вході</translation>
    </message>
    <message>
        <source>Keep converted selection selected</source>
        <translation>Залишати виправлений текст виділеним</translation>
    </message>
    <message>
        <source>How to make it work?</source>
        <translation>Як це працює?</translation>
    </message>
    <message>
        <source>Read the step-by-step setup and usage guide for Kelvora.</source>
        <translation>Прочитайте покроковий посібник з налаштування й використання Kelvora.</translation>
    </message>
    <message>
        <source>Open How-To Guide</source>
        <translation>Відкрити посібник</translation>
    </message>
    <message>
        <source>Input Sources</source>
        <translation>Джерела введення</translation>
    </message>
    <message>
        <source>Add at least two keyboard layouts in System Settings → Keyboard → Input Sources.</source>
        <translation>Додайте щонайменше дві розкладки: «Системні параметри» → «Клавіатура» → «Джерела введення».</translation>
    </message>
    <message>
        <source>First layout</source>
        <translation>Перша розкладка</translation>
    </message>
    <message>
        <source>Second layout</source>
        <translation>Друга розкладка</translation>
    </message>
    <message>
        <source>The first two enabled keyboard layouts are selected by default.</source>
        <translation>Типово вибрано перші дві увімкнені розкладки.</translation>
    </message>
    <message>
        <source>Permissions</source>
        <translation>Дозволи</translation>
    </message>
    <message>
        <source>Accessibility</source>
        <translation>Доступність</translation>
    </message>
    <message>
        <source>Input Monitoring</source>
        <translation>Моніторинг введення</translation>
    </message>
    <message>
        <source>How to Grant Access (Drag Animation)</source>
        <translation>Як надати доступ (анімація)</translation>
    </message>
    <message>
        <source>Accessibility and Input Monitoring are required for keyboard detection and text correction. Return here after granting access; the indicators update automatically.</source>
        <translation>«Доступність» і «Моніторинг введення» потрібні, щоб стежити за клавіатурою й виправляти текст. Надавши доступ, поверніться сюди: позначки оновляться самі.</translation>
    </message>
    <message>
        <source>Use</source>
        <translation>Використання</translation>
    </message>
    <message>
        <source>Keyboard listener</source>
        <translation>Стеження за клавіатурою</translation>
    </message>
    <message>
        <source>Shift events received</source>
        <translation>Отримано подій Shift</translation>
    </message>
    <message>
        <source>Double-taps detected</source>
        <translation>Розпізнано подвійних натискань</translation>
    </message>
    <message>
        <source>Select text and tap either Shift key twice to convert the selection. With no selection, only the word at or immediately before the caret is converted.</source>
        <translation>Виділіть текст і двічі натисніть будь-який Shift, щоб перетворити виділення. Якщо нічого не виділено, перетворюється лише слово під курсором або одразу перед ним.</translation>
    </message>
    <message>
        <source>Conversion uses the physical key positions of the two selected layouts.</source>
        <translation>Перетворення йде за фізичним розташуванням клавіш двох вибраних розкладок.</translation>
    </message>
</context>
<context>
    <name>PreferencesWindow</name>
    <message>
        <source>Kelvora Preferences</source>
        <translation>Налаштування Kelvora</translation>
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
        <translation>Вимкнено</translation>
    </message>
    <message>
        <source>Accessibility permission required</source>
        <translation>Потрібен дозвіл «Доступність»</translation>
    </message>
    <message>
        <source>Secure keyboard input is active. Leave password fields or disable Secure Keyboard Entry in Terminal.</source>
        <translation>Увімкнено захищене введення з клавіатури. Залиште поле пароля або вимкніть захищене введення з клавіатури в терміналі.</translation>
    </message>
    <message>
        <source>Listening for double-Shift</source>
        <translation>Очікування подвійного Shift</translation>
    </message>
    <message>
        <source>Keyboard listener could not start. Quit and reopen Kelvora.</source>
        <translation>Не вдалося почати стеження за клавіатурою. Вийдіть з Kelvora й відкрийте знову.</translation>
    </message>
    <message>
        <source>Listening for double-Shift. This is a Wayland session: only X11 windows are served, Wayland windows are not yet.</source>
        <translation>Очікування подвійного Shift. Це сеанс Wayland: обслуговуються лише вікна X11, вікна Wayland поки що ні.</translation>
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
