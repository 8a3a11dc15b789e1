// SPDX-License-Identifier: MIT
#pragma once

#include "tests/applications/application.h"

#include <filesystem>
#include <vector>

namespace kelvora::applications {

/// The windows that are built here, in `folder`: all kinds of fields in three toolkits, with
/// accessibility and without.
[[nodiscard]] std::vector<ApplicationDescription> fieldWindows(const std::filesystem::path& folder);

/// One of those windows, without accessibility, with a clipboard manager running beside it.
[[nodiscard]] std::vector<ApplicationDescription>
clipboardManagers(const std::filesystem::path& folder);

/// Terminals with a program running in them.
[[nodiscard]] std::vector<ApplicationDescription> terminals();

/// What the distribution has. `documents` is the folder with what the
/// browser and the office open.
[[nodiscard]] std::vector<ApplicationDescription>
distributedApplications(const std::filesystem::path& documents);

} // namespace kelvora::applications
