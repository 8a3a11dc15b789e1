// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

namespace kelvora::bench {

/// What the kernel says of a process, all its threads together.
struct ProcessFigures {
    long residentKibibytes = 0;        ///< memory in RAM, shared libraries included
    long privateResidentKibibytes = 0; ///< of that, what no file is behind
    long wakeUps = 0;                  ///< voluntary context switches since its start
    double processorSeconds = 0;       ///< since its start
};

[[nodiscard]] ProcessFigures readProcessFigures(pid_t process);

} // namespace kelvora::bench
