// SPDX-License-Identifier: MIT
#pragma once

#include "tests/applications/application.h"
#include "tests/applications/scenario.h"
#include "tests/support/real_desktop/program.h"
#include "tests/support/real_desktop/real_desktop.h"

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace kelvora::applications {

/// What was seen in one scenario.
struct Observation {
    std::string application;
    std::string field;
    std::string scenario;
    std::string path; ///< which of the program's ways did it, from its log
    std::string before;
    std::string after;
    std::string clipboard;
    std::string layout;
    std::string undo;                  ///< how many Control+Z bring the text back
    std::vector<std::string> problems; ///< what is not as it should be
};

/// A desktop with the program and one application in it, which scenarios are tried on.
class Session {
public:
    Session(const std::filesystem::path& program, const ApplicationDescription& description);

    [[nodiscard]] Observation run(const Scenario& scenario, Field field);
    /// What the program that runs beside has kept of it all, once it has ended.
    [[nodiscard]] Observation endCompanion();

private:
    class Run;

    real::RealDesktop desktop_;
    const ApplicationDescription& description_;
    std::unique_ptr<Application> application_;
    real::KeyboardState initialState_;
    real::Program program_;
    std::unique_ptr<real::ChildProcess> companion_;
};

/// Every scenario, or those with `part` in their name, for every field of the application that it
/// is meant for.
[[nodiscard]] std::vector<Observation> observe(const std::filesystem::path& program,
                                               const ApplicationDescription& description,
                                               const std::string& part = {});

} // namespace kelvora::applications
