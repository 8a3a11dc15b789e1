// SPDX-License-Identifier: MIT
#pragma once

namespace kelvora {

/// The user's keyboards held back for the time of one correction.
///
/// Keys that the user presses meanwhile reach no application; destroying the hold delivers them in
/// their order, as the user's own, in the layout that is active then. Posted events reach the
/// application as usual. They go to the hold's window or nowhere: nothing is posted when the focus
/// is elsewhere, but once the first event got through, the window gets the focus back for the rest,
/// because half a correction is lost text. A desktop that can only do that, and not hold keys, may
/// give such a hold too. Used by one thread at a time; may be destroyed on another thread than it
/// was made on.
class KeyboardHold {
public:
    virtual ~KeyboardHold() = default;

    /// Waits until every event from before the hold has passed the event tap, so that whatever the
    /// tap's reader records is complete. Not on the main thread, where the tap is served. False
    /// when that could not be seen within a second.
    [[nodiscard]] virtual bool settle() = 0;

    /// True while the window that the hold is for has the focus.
    [[nodiscard]] virtual bool hasFocus() = 0;

    /// A key of the user's waits for the end of the hold, modifiers aside.
    [[nodiscard]] virtual bool hasHeldKeys() = 0;

    /// Something could not be posted, and nothing has been since.
    [[nodiscard]] virtual bool hasFailed() = 0;
};

} // namespace kelvora
