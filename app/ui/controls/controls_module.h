// SPDX-License-Identifier: MIT
#pragma once

namespace kelvora {

/// Makes `import Kelvora.Controls` known to engines. Main thread, before the first engine; again is
/// harmless.
void registerControlsModule();

} // namespace kelvora
