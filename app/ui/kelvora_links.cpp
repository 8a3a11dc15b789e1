// SPDX-License-Identifier: MIT
#include "app/ui/kelvora_links.h"

#include <QFile>
#include <QString>

namespace kelvora {

const QUrl& KelvoraLinks::howTo() {
    static const QUrl address = [] {
        const QString installed = QStringLiteral(KELVORA_HOW_TO_INSTALLED);
        return QUrl::fromLocalFile(
            QFile::exists(installed) ? installed : QStringLiteral(KELVORA_HOW_TO_IN_SOURCES));
    }();
    return address;
}

} // namespace kelvora
