// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/updates/update_screen.h"

#include <QDialog>

#include <functional>
#include <optional>

class QLabel;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;

namespace kelvora {

/// The one window of software updates. Everything from the feed is shown as plain text.
class UpdateWindow final : public QDialog {
public:
    /// `onAction` is called from the loop for what the user does, closing the window included; the
    /// window may be destroyed later than that, not inside it.
    explicit UpdateWindow(std::function<void(UpdateAction)> onAction);

    void present(const UpdateScreen& screen, UpdatePresentation presentation);

private:
    void setScreen(const UpdateScreen& screen);
    void setProgress(const UpdateScreen& screen);
    void setIcon(const UpdateScreen& screen);
    void comeToFront();
    void comeAsReminder();

    std::function<void(UpdateAction)> onAction_;
    UpdateAction proceedAction_ = UpdateAction::dismiss;
    std::optional<std::size_t> kind_; // of the screen that is shown
    QLabel* icon_;
    QLabel* heading_;
    QLabel* body_;
    QPlainTextEdit* notes_;
    QProgressBar* progress_;
    QPushButton* proceed_;
    QPushButton* dismiss_;
};

} // namespace kelvora
