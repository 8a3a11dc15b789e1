// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/updates/update_screen.h"

#include <QCoreApplication>
#include <QString>

namespace kelvora {

/// The words of the update window, in the user's language.
struct UpdateText {
    Q_DECLARE_TR_FUNCTIONS(kelvora::UpdateText)

public:
    QString heading = {};
    QString body = {};    ///< plain text
    QString proceed = {}; ///< the button that goes on; empty for none
    QString dismiss = {}; ///< the button that ends it

    [[nodiscard]] static UpdateText of(const UpdateScreen& screen);
    [[nodiscard]] static QString windowTitle();
    [[nodiscard]] static QString notesLabel();
    [[nodiscard]] static QString progressLabel();

private:
    struct ForScreen;
    [[nodiscard]] static UpdateText ofNotice(const NoticeScreen& screen);
    [[nodiscard]] static QString bodyOf(const NoticeScreen& screen);
};

} // namespace kelvora
