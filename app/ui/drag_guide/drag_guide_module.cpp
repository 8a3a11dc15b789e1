// SPDX-License-Identifier: MIT
#include "app/ui/drag_guide/drag_guide_module.h"

#include "app/ui/controls/controls_module.h"

void qml_register_types_Kelvora_DragGuide();

namespace kelvora {

void registerDragGuideModule() {
    registerControlsModule();
    qml_register_types_Kelvora_DragGuide();
}

} // namespace kelvora
