// SPDX-License-Identifier: MIT
#include "host/linux/atspi/atspi_opt_in.h"

#include "host/linux/desktop/atomic_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cstdlib>

namespace kelvora {
namespace {

const AtspiReference accessibilityBus{"org.a11y.Bus", "/org/a11y/bus"};
constexpr const char* statusInterface = "org.a11y.Status";
constexpr const char* enabledProperty = "IsEnabled";
constexpr const char* screenReaderProperty = "ScreenReaderEnabled";
constexpr const char* changeRule =
    "type='signal',sender='org.a11y.Bus',path='/org/a11y/bus',"
    "interface='org.freedesktop.DBus.Properties',member='PropertiesChanged',"
    "arg0='org.a11y.Status'";
constexpr mode_t ownerOnly = S_IRUSR | S_IWUSR;

bool isTrue(const BusValue& value) {
    const bool* const flag = std::get_if<bool>(&value);
    return flag != nullptr && *flag;
}

} // namespace

std::filesystem::path AtspiOptIn::defaultStateDirectory() {
    // A relative one is to be ignored (XDG base directories).
    if (const char* const state = std::getenv("XDG_STATE_HOME"); state && *state == '/')
        return std::filesystem::path(state) / "kelvora";
    if (const char* const home = std::getenv("HOME"); home && *home == '/')
        return std::filesystem::path(home) / ".local/state/kelvora";
    return {};
}

AtspiOptIn::AtspiOptIn(std::filesystem::path stateDirectory)
    : stateDirectory_(std::move(stateDirectory)) {}

AtspiOptIn::~AtspiOptIn() {
    isEnding_ = true;
    wake_.wake();
    if (thread_.joinable())
        thread_.join();
}

void AtspiOptIn::request() {
    const Progress progress = progress_;
    if (progress == Progress::working || progress == Progress::done)
        return;
    if (wake_.descriptor() < 0)
        return; // what is switched on here could not be watched, nor the watching ended
    const std::lock_guard guard(mutex_);
    if (progress_ == Progress::working || progress_ == Progress::done || isEnding_)
        return;
    if (thread_.joinable())
        thread_.join(); // it has ended
    progress_ = Progress::working;
    thread_ = std::thread([this] { run(); });
}

void AtspiOptIn::run() {
    switchOn();
    if (progress_ == Progress::otherCopy)
        return;
    progress_ = Progress::done;
    if (isOurs_) {
        watch();
        putBack();
    }
    session_.reset();
    if (lock_ >= 0)
        close(lock_);
}

void AtspiOptIn::switchOn() {
    session_ = BusConnection::openSession();
    if (!session_ || stateDirectory_.empty() || makePrivateDirectories(stateDirectory_) != 0 ||
        !lockState() ||
        !session_->subscribe(changeRule, [this](const BusSignal& signal) { noteChange(signal); }))
        return;
    const auto enabled =
        session_->property<bool>(accessibilityBus, statusInterface, enabledProperty);
    if (!enabled)
        return;
    std::error_code error;
    const bool wasOursBefore = std::filesystem::exists(recordFile(), error);
    if (enabled.value) {
        // On because of a run of ours that could not undo it, unless a screen reader came since.
        isOurs_ = wasOursBefore && !readStatus(screenReaderProperty, true);
        if (wasOursBefore && !isOurs_)
            removeRecord();
    } else if (writeRecord()) {
        isOurs_ = session_->setProperty(accessibilityBus, statusInterface, enabledProperty, true) ==
                  BusError::none;
        if (!isOurs_)
            removeRecord();
    }
}

void AtspiOptIn::noteChange(const BusSignal& signal) {
    // Our own change to "on" is told as well; any change to "off" is somebody else's.
    const auto enabled = signal.properties.find(enabledProperty);
    if (enabled != signal.properties.end() && !isTrue(enabled->second))
        isOurs_ = false;
    const auto reader = signal.properties.find(screenReaderProperty);
    if (reader != signal.properties.end() && isTrue(reader->second))
        isOurs_ = false;
}

void AtspiOptIn::watch() {
    while (session_->dispatch() && isOurs_ && !isEnding_)
        session_->wait(std::chrono::milliseconds(-1), wake_.descriptor());
}

void AtspiOptIn::putBack() {
    if (isOurs_ && readStatus(enabledProperty, true) && !readStatus(screenReaderProperty, false)) {
        // Not told: the session may be ending. The record stays, and the next run knows.
        if (session_->setProperty(accessibilityBus, statusInterface, enabledProperty, false) !=
            BusError::none)
            return;
    }
    removeRecord();
}

bool AtspiOptIn::readStatus(const char* name, bool ifUnknown) {
    const auto reply = session_->property<bool>(accessibilityBus, statusInterface, name);
    return reply ? reply.value : ifUnknown;
}

std::filesystem::path AtspiOptIn::recordFile() const {
    return stateDirectory_ / "accessibility-was-off";
}

/// Held for as long as the setting is ours, so that two copies do not undo each other's.
bool AtspiOptIn::lockState() {
    const std::filesystem::path file = stateDirectory_ / "accessibility.lock";
    lock_ = open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, ownerOnly);
    if (lock_ < 0)
        return false;
    if (flock(lock_, LOCK_EX | LOCK_NB) == 0)
        return true;
    close(lock_);
    lock_ = -1;
    progress_ = Progress::otherCopy;
    return false;
}

bool AtspiOptIn::writeRecord() {
    return replaceFile(recordFile(), "The desktop's accessibility (IsEnabled of org.a11y.Status) "
                                     "was off and has been switched on.\n") == 0;
}

void AtspiOptIn::removeRecord() {
    std::error_code error;
    std::filesystem::remove(recordFile(), error);
}

} // namespace kelvora
