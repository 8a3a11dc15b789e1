// SPDX-License-Identifier: MIT
// Tries the program in real applications and tells what was seen, as rows of a Markdown table:
//     kelvora-applications PROGRAM FOLDER_OF_THE_FIELD_WINDOWS DOCUMENTS [PART_OF_A_NAME
//     [PART_OF_A_CASE]]
// What is not as it should be goes to the standard error as well, and makes it fail.
#include "tests/applications/catalogue.h"
#include "tests/applications/session.h"

#include <array>
#include <cstdio>
#include <iterator>
#include <memory>
#include <string>

namespace {

using namespace kelvora::applications;

std::string versionOf(const std::string& package) {
    const std::string command = "dpkg-query -W -f '${source:Upstream-Version}' " + package;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::array<char, 100> line{};
    return pipe && std::fgets(line.data(), line.size(), pipe.get()) != nullptr ? line.data() : "";
}

/// A text as it can stand in a table.
std::string shown(const std::string& text) {
    constexpr std::size_t longest = 80;
    if (text.starts_with("long:") || text.size() > longest)
        return "(long)";
    std::string result;
    for (const char character : text) {
        switch (character) {
        case '\n':
            result += "↵";
            break;
        case '\b':
            result += "⌫";
            break;
        case '|':
            result += "\\|";
            break;
        default:
            result += character;
        }
    }
    return result;
}

void print(const ApplicationDescription& description, const std::string& version,
           const Observation& seen) {
    std::string result = seen.problems.empty() ? "as it should be" : "";
    for (const std::string& problem : seen.problems) {
        result += (result.empty() ? "" : "; ") + shown(problem);
        std::fprintf(stderr, "%s, %s, %s: %.400s\n", seen.application.c_str(), seen.field.c_str(),
                     seen.scenario.c_str(), problem.c_str());
    }
    const std::array cells{description.name, version,     description.toolkit, seen.field,
                           seen.scenario,    seen.path,   shown(seen.before),  shown(seen.after),
                           seen.clipboard,   seen.layout, seen.undo,           result};
    std::string row = "|";
    for (const std::string& cell : cells)
        row += " " + cell + " |";
    std::puts(row.c_str());
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 4) {
        std::fputs("usage: kelvora-applications PROGRAM FOLDER DOCUMENTS [PART_OF_A_NAME "
                   "[PART_OF_A_CASE]]\n",
                   stderr);
        return 2;
    }
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    std::vector<ApplicationDescription> descriptions;
    for (std::vector<ApplicationDescription>& some : std::array{
             fieldWindows(argv[2]), distributedApplications(std::filesystem::absolute(argv[3])),
             clipboardManagers(argv[2]), terminals()})
        std::move(some.begin(), some.end(), std::back_inserter(descriptions));
    std::puts("| application | version | toolkit | field | case | way | before | after | clipboard "
              "| layout after | undo | result |\n"
              "|---|---|---|---|---|---|---|---|---|---|---|---|");
    bool isRight = true;
    for (const ApplicationDescription& description : descriptions) {
        if (argc > 4 && description.name.find(argv[4]) == std::string::npos)
            continue;
        const std::string version = versionOf(description.package);
        for (const Observation& seen : observe(argv[1], description, argc > 5 ? argv[5] : "")) {
            print(description, version, seen);
            isRight = isRight && seen.problems.empty();
        }
    }
    return isRight ? 0 : 1;
}
