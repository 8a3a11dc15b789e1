// SPDX-License-Identifier: MIT
#pragma once

namespace kelvora {

/// Makes `import Kelvora.DragGuide` known to engines. Main thread, before the first engine; again
/// is harmless.
void registerDragGuideModule();

} // namespace kelvora
