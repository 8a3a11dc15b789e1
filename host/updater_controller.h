// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <string>

namespace kelvora {

/// A newer version, as far as it concerns those who present it. UTF-8, plain text.
struct UpdateItem {
    std::string version;
    std::string notes; ///< what is new; lines end in LF
    friend bool operator==(const UpdateItem&, const UpdateItem&) = default;
};

/// Who asked for the check that found an update.
enum class UserUpdateState { userInitiated, scheduled };

/// How an update is presented.
enum class UpdateShowing {
    byController, ///< the controller opens its window in front, to be acted on now
    asReminder,   ///< only a reminder that takes no focus; the user comes to it in their own time
};

/// What the owner of an updater contributes to its windows. Called on the main thread. Outlives the
/// controller.
class UserDriverDelegate {
public:
    virtual ~UserDriverDelegate() = default;

    /// Whether what a scheduled check finds may be presented as a reminder. Otherwise it is shown
    /// in front, like what the user asked for.
    [[nodiscard]] virtual bool supportsGentleScheduledUpdateReminders() const = 0;
    /// An update is about to be presented.
    virtual void standardUserDriverWillHandleShowingUpdate(UpdateShowing showing,
                                                           const UpdateItem& update,
                                                           UserUpdateState state) = 0;
};

/// Finds, fetches and hands over new versions, with windows of its own. Whatever goes wrong is
/// reported there. Main thread only.
class UpdaterController {
public:
    virtual ~UpdaterController() = default;

    /// Begins the scheduled checks, where the installation asks for them. Once.
    virtual void start() = 0;
    /// Checks now and shows what comes of it.
    virtual void checkForUpdates() = 0;
};

/// Makes the desktop's controller; null where it has none.
using UpdaterControllerFactory =
    std::function<std::unique_ptr<UpdaterController>(UserDriverDelegate& delegate)>;

} // namespace kelvora
