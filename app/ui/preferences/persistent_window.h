// SPDX-License-Identifier: MIT
#pragma once

#include <QQuickView>

namespace kelvora {

/// A window that closing only hides: what it shows stays as the user left it. Main thread only.
class PersistentWindow final : public QQuickView {
    Q_OBJECT
public:
    PersistentWindow();
    ~PersistentWindow() override;

    /// Lets the focused item, or the nearest one around it that can, do what an item of the menus
    /// is named after ("copy", "undo", ...); false when there is none.
    Q_INVOKABLE bool perform(const QString& action);
    /// Does what the key means with Control held; false for all other keys.
    [[nodiscard]] bool performKeyEquivalent(const QKeyEvent& event);

    /// Puts it into the middle of the screen that the pointer is on, all of it visible if it can.
    void center();

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};

} // namespace kelvora
