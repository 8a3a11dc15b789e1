// SPDX-License-Identifier: MIT
#include "host/linux/desktop/journal_log.h"

#include "host/linux/desktop/application_id.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syslog.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace kelvora {
namespace {

std::string_view environment(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

LogLevel lowestLevel() {
    return environment("KELVORA_LOG") == "debug" ? LogLevel::debug : LogLevel::info;
}

/// As systemd tells the programs it starts: the journal's stream by device and inode.
bool isStderrTheJournals() {
    struct stat status {};
    return fstat(STDERR_FILENO, &status) == 0 &&
           environment("JOURNAL_STREAM") ==
               std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino);
}

bool isStderrRead() {
    return !isStderrTheJournals() &&
           (isatty(STDERR_FILENO) != 0 || std::getenv("KELVORA_LOG") != nullptr);
}

FileDescriptor connectTo(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path)
        return FileDescriptor();
    std::memcpy(address.sun_path, path.data(), path.size());
    FileDescriptor socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    const auto* const generic = reinterpret_cast<const sockaddr*>(&address);
    return connect(socket.get(), generic, sizeof address) == 0 ? std::move(socket)
                                                               : FileDescriptor();
}

int priorityOf(LogLevel level) {
    switch (level) {
    case LogLevel::debug:
        return LOG_DEBUG;
    case LogLevel::info:
        return LOG_INFO;
    case LogLevel::error:
        return LOG_ERR;
    }
    return LOG_INFO;
}

/// With the length before the value: that form holds any bytes, line breaks too.
void appendField(std::string& datagram, std::string_view name, std::string_view value) {
    datagram.append(name).append("\n");
    std::uint64_t length = value.size();
    for (std::size_t byte = 0; byte < sizeof length; ++byte) {
        datagram += static_cast<char>(length & 0xFF); // little-endian
        length >>= 8U;
    }
    datagram.append(value).append("\n");
}

} // namespace

JournalLog::JournalLog(const std::filesystem::path& socket)
    : lowest_(lowestLevel()), stderr_(lowest_),
      useOfStderr_(isStderrRead() ? Stderr::always : Stderr::withoutJournal),
      journal_(connectTo(socket.string())) {}

void JournalLog::write(LogLevel level, std::string_view category, std::string_view message) {
    if (level < lowest_)
        return;
    std::string datagram;
    appendField(datagram, "MESSAGE", message);
    appendField(datagram, "PRIORITY", std::to_string(priorityOf(level)));
    appendField(datagram, "SYSLOG_IDENTIFIER", "kelvora");
    appendField(datagram, "SUBSYSTEM", applicationId);
    appendField(datagram, "CATEGORY", category);
    const bool isKept = send(datagram);
    if (useOfStderr_ == Stderr::always || !isKept)
        stderr_.write(level, category, message);
}

bool JournalLog::send(const std::string& datagram) const {
    ssize_t sent = -1;
    do {
        sent =
            ::send(journal_.get(), datagram.data(), datagram.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
    } while (sent < 0 && errno == EINTR);
    return sent >= 0;
}

} // namespace kelvora
