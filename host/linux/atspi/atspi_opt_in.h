// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/atspi/bus_connection.h"
#include "host/linux/atspi/wake_descriptor.h"

#include <atomic>
#include <filesystem>
#include <mutex>
#include <thread>

namespace kelvora {

/// Switches the desktop's accessibility on when first asked to, so that applications show
/// themselves, and back off at the end. It is a setting of the whole desktop that outlasts the
/// session (`IsEnabled` of org.a11y.Status, which also writes the user's setting
/// "toolkit-accessibility"), so what was found is kept in a file from before the change until it
/// is undone: after a crash the next run still undoes it. It is not undone when somebody else came
/// to want it: a screen reader runs, or another program switched it off, or off and on again.
/// Without a place for that file, or a descriptor to end on, nothing is switched. Any thread;
/// nothing blocks but the end, for the time of a few calls.
class AtspiOptIn {
public:
    /// `stateDirectory` is made when it is needed.
    explicit AtspiOptIn(std::filesystem::path stateDirectory);
    ~AtspiOptIn();
    AtspiOptIn(const AtspiOptIn&) = delete;
    AtspiOptIn& operator=(const AtspiOptIn&) = delete;

    /// Where the program's state is kept for this user: `kelvora` in XDG_STATE_HOME; empty when
    /// there is no home.
    [[nodiscard]] static std::filesystem::path defaultStateDirectory();

    /// Asks for accessibility to be on. Only the first time does anything, except that while an
    /// older copy of the program still holds the setting it is tried again each time.
    void request();

private:
    enum class Progress { notAsked, working, otherCopy, done };

    void run();
    void switchOn();
    void noteChange(const BusSignal& signal);
    void watch();
    void putBack();
    [[nodiscard]] bool readStatus(const char* name, bool ifUnknown);
    [[nodiscard]] bool lockState();
    [[nodiscard]] bool writeRecord();
    void removeRecord();
    [[nodiscard]] std::filesystem::path recordFile() const;

    std::filesystem::path stateDirectory_;
    std::mutex mutex_; ///< for starting the thread
    std::atomic<Progress> progress_ = Progress::notAsked;
    std::atomic<bool> isEnding_ = false;
    WakeDescriptor wake_; ///< ends the watching
    std::thread thread_;

    // The thread's own.
    std::unique_ptr<BusConnection> session_;
    int lock_ = -1;
    bool isOurs_ = false; ///< it is on because of us
};

} // namespace kelvora
