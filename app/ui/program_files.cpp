// SPDX-License-Identifier: MIT
#include "app/ui/program_files.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

namespace kelvora {

QString programsOwnFile(const QString& name, const QString& installedDirectory) {
    const QDir program(QCoreApplication::applicationDirPath());
    const QString inBuild = program.filePath(name);
    return QFile::exists(inBuild)
               ? inBuild
               : QDir::cleanPath(program.filePath(installedDirectory + "/" + name));
}

} // namespace kelvora
