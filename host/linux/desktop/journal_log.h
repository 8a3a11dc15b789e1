// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/desktop/file_descriptor.h"
#include "host/linux/desktop/stderr_log.h"
#include "host/log.h"

#include <filesystem>
#include <string>

namespace kelvora {

/// Writes to the journal, by its native protocol, so that lines can be filtered by CATEGORY and
/// SUBSYSTEM. They go to stderr as well when somebody reads it there: it is a terminal or
/// KELVORA_LOG is set; and instead, when there is no journal. A stderr that the journal reads
/// (JOURNAL_STREAM) gets no second copy. Debug lines are dropped unless KELVORA_LOG is "debug".
/// Any thread; a journal that hangs delays nobody.
class JournalLog : public LogSink {
public:
    /// Reads the environment. `socket` is the journal's.
    explicit JournalLog(const std::filesystem::path& socket = "/run/systemd/journal/socket");

    void write(LogLevel level, std::string_view category, std::string_view message) override;

private:
    enum class Stderr { always, withoutJournal };

    [[nodiscard]] bool send(const std::string& datagram) const;

    LogLevel lowest_;
    StderrLog stderr_;
    Stderr useOfStderr_;
    FileDescriptor journal_; ///< connected; invalid: there is none
};

} // namespace kelvora
