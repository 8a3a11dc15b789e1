// SPDX-License-Identifier: MIT
#include "app/ui/controls/controls_module.h"

#include <QtGlobal>

void qml_register_types_Kelvora_Controls();

namespace kelvora {

void registerControlsModule() {
    qml_register_types_Kelvora_Controls();
}

} // namespace kelvora
