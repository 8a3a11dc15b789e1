// SPDX-License-Identifier: MIT
#pragma once

namespace kelvora {

/// Shows the program's texts in the session's language where there is a translation, in English
/// otherwise. Main thread, once, after the application is made and before the first text is shown.
void installTranslation();

} // namespace kelvora
