// SPDX-License-Identifier: MIT
#include "host/linux/desktop/journal_log.h"

#include "tests/host/desktop/temporary_directory.h"

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <map>
#include <optional>
#include <sstream>

namespace kelvora {
namespace {

using Fields = std::map<std::string, std::string>;

/// Takes what is sent to the journal, and reads its protocol.
class Journal {
public:
    explicit Journal(const std::string& path) : socket_(socket(AF_UNIX, SOCK_DGRAM, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::memcpy(address.sun_path, path.data(), path.size());
        bind(socket_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
    }

    /// The next entry, absent when there is none.
    [[nodiscard]] std::optional<Fields> next() {
        std::array<char, 4096> buffer{};
        const ssize_t size = recv(socket_.get(), buffer.data(), buffer.size(), MSG_DONTWAIT);
        if (size < 0)
            return std::nullopt;
        std::string_view rest(buffer.data(), static_cast<std::size_t>(size));
        Fields fields;
        while (!rest.empty()) {
            const std::size_t nameEnd = rest.find('\n');
            std::uint64_t length = 0; // this machine is little-endian, as the protocol is
            std::memcpy(&length, rest.data() + nameEnd + 1, sizeof length);
            const std::size_t valueBegin = nameEnd + 1 + sizeof length;
            fields[std::string(rest.substr(0, nameEnd))] = rest.substr(valueBegin, length);
            EXPECT_EQ(rest.at(valueBegin + length), '\n');
            rest.remove_prefix(valueBegin + length + 1);
        }
        return fields;
    }

private:
    FileDescriptor socket_;
};

std::string identityOfStderr() {
    struct stat status {};
    fstat(STDERR_FILENO, &status);
    return std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino);
}

enum class StderrIs { aFile, theJournals };
enum class JournalIs { there, absent };

TEST(JournalLogTest, EveryLineGoesWhereItIsReadOnce) {
    const struct {
        const char* variable; ///< KELVORA_LOG
        StderrIs stderrIs;
        JournalIs journalIs;
        std::string_view inJournal; ///< d, i, e: the levels that arrive
        std::string_view onStderr;
    } cases[] = {
        {nullptr, StderrIs::aFile, JournalIs::there, "ie", ""},
        {nullptr, StderrIs::aFile, JournalIs::absent, "", "ie"},
        {nullptr, StderrIs::theJournals, JournalIs::there, "ie", ""},
        {nullptr, StderrIs::theJournals, JournalIs::absent, "", "ie"},
        {"info", StderrIs::aFile, JournalIs::there, "ie", "ie"},
        {"debug", StderrIs::aFile, JournalIs::there, "die", "die"},
        {"debug", StderrIs::theJournals, JournalIs::there, "die", ""},
        {"debug", StderrIs::theJournals, JournalIs::absent, "", "die"},
    };
    for (const auto& c : cases) {
        const TemporaryDirectory directory;
        const std::string socket = directory.path / "socket";
        std::optional<Journal> journal;
        if (c.journalIs == JournalIs::there)
            journal.emplace(socket);
        const ScopedVariable wanted("KELVORA_LOG", c.variable);
        testing::internal::CaptureStderr();
        const bool isTheJournals = c.stderrIs == StderrIs::theJournals;
        const ScopedVariable stream("JOURNAL_STREAM",
                                    isTheJournals ? identityOfStderr().c_str() : "1:2");

        JournalLog log(socket);
        log.write(LogLevel::debug, "Test", "d");
        log.write(LogLevel::info, "Test", "i");
        log.write(LogLevel::error, "Test", "e");

        std::string inJournal;
        while (const auto entry = journal ? journal->next() : std::nullopt)
            inJournal += entry->at("MESSAGE");
        std::istringstream lines(testing::internal::GetCapturedStderr());
        std::string onStderr;
        for (std::string line; std::getline(lines, line);)
            onStderr += line.back();
        EXPECT_EQ(inJournal, c.inJournal);
        EXPECT_EQ(onStderr, c.onStderr);
    }
}

TEST(JournalLogTest, EntriesCanBeFiltered) {
    const ScopedVariable wanted("KELVORA_LOG", nullptr);
    const TemporaryDirectory directory;
    const std::string socket = directory.path / "socket";
    std::optional<Journal> journal(socket);
    JournalLog log(socket);
    log.write(LogLevel::error, "Hotkey", "two\nlines=1");
    EXPECT_EQ(journal->next(), (Fields{{"MESSAGE", "two\nlines=1"},
                                       {"PRIORITY", "3"},
                                       {"SYSLOG_IDENTIFIER", "kelvora"},
                                       {"SUBSYSTEM", "org.kelvora.Kelvora"},
                                       {"CATEGORY", "Hotkey"}}));

    // A journal that reads nothing any more blocks nobody, and one that ends loses no line.
    testing::internal::CaptureStderr();
    for (int i = 0; i < 10'000; ++i)
        log.write(LogLevel::info, "Test", std::string(1000, 'x'));
    journal.reset();
    log.write(LogLevel::info, "Test", "afterwards");
    EXPECT_NE(testing::internal::GetCapturedStderr().find("afterwards"), std::string::npos);
}

} // namespace
} // namespace kelvora
