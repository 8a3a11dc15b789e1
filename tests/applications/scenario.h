// SPDX-License-Identifier: MIT
#pragma once

#include "tests/applications/application.h"

#include <string>
#include <vector>

namespace kelvora::applications {

/// What happens around the double Shift.
enum class Event {
    none,
    largeClipboard,  ///< the clipboard holds 20 MB more
    stoppedProcess,  ///< the application does not react, and comes back afterwards
    exitingProcess,  ///< the application is killed as the conversion begins
    copyInTheMiddle, ///< another program copies as soon as the clipboard is borrowed
};

/// A text in a field, what is selected in it, and what the double Shift makes of it.
struct Scenario {
    const char* name;
    std::vector<Field> fields;
    std::string before;
    std::vector<const char*> keys; ///< chords that select or place the caret
    std::string selected;          ///< what they must have selected; empty for nothing
    std::string after;             ///< equal to `before` when nothing is to be converted
    Event event = Event::none;
    std::string orElse{}; ///< another text that is right as well; none when empty
    /// What it makes of it in an application that tells nothing of its fields; as `after` when
    /// empty.
    std::string afterUnaware{};
    /// The same in one whose fields can only be read.
    std::string afterReadable{};
};

[[nodiscard]] const std::vector<Scenario>& scenarios();

} // namespace kelvora::applications
