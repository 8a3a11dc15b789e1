// SPDX-License-Identifier: MIT
#include "app/ui/translation.h"

#include <QCoreApplication>
#include <QLocale>
#include <QTranslator>

namespace kelvora {

void installTranslation() {
    static QTranslator translator;
    if (translator.load(QLocale(), QStringLiteral("kelvora"), QStringLiteral("_"),
                        QStringLiteral(":/kelvora/translations"))) {
        QCoreApplication::installTranslator(&translator);
    }
}

} // namespace kelvora
