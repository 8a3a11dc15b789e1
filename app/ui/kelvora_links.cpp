// SPDX-License-Identifier: MIT
#include "app/ui/kelvora_links.h"

#include "app/ui/program_files.h"

namespace kelvora {

const QUrl& KelvoraLinks::howTo() {
    static const QUrl address = QUrl::fromLocalFile(programsOwnFile(
        QStringLiteral("how-to/index.html"), QStringLiteral(KELVORA_DOCUMENT_DIRECTORY)));
    return address;
}

} // namespace kelvora
