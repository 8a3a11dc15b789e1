// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/updates/standard_updater_controller.h"
#include "tests/host/updates/https_server.h"
#include "tests/host/updates/maintainer.h"
#include "tests/support/fake_desktop/recording_log.h"

#include <QTemporaryDir>

#include <functional>
#include <map>
#include <memory>
#include <string>

namespace kelvora::test {

/// A user's home with an installed program, a server and a maintainer, and an installer that only
/// keeps what it is given. Everything but that is real.
class UpdatesRig final : public UserDriverDelegate {
public:
    UpdatesRig();
    ~UpdatesRig() override;

    /// Starts the program; a second call starts it again.
    void launch();
    void quit() { controller_.reset(); }
    void checkForUpdates() { controller_->checkForUpdates(); }

    /// Publishes a feed whose package is served at "/package".
    void publish(Document document);

    /// The text of a part of the window that is shown; empty when there is none.
    [[nodiscard]] std::string text(const char* part) const;
    [[nodiscard]] bool isWindowOpen() const;
    /// Waits until the window offers the button, and presses it.
    void click(const char* button);
    /// Serves the loop until `condition` holds; fails the test when it does not come to.
    void waitUntil(const std::function<bool()>& condition);
    /// Waits until the window says how it ended.
    void waitForNotice(UpdateNotice notice);

    /// Every file below the home with its content, and every directory.
    [[nodiscard]] std::map<std::string, std::string> machine() const;
    [[nodiscard]] std::string path(const std::string& name) const;
    /// The content of a file; empty when there is none.
    [[nodiscard]] std::string read(const std::string& name) const;
    /// What the installer was handed; empty when it was not called.
    [[nodiscard]] std::string handedOver() const { return read("handed-over"); }
    void write(const std::string& name, const std::string& content) const;

    [[nodiscard]] bool supportsGentleScheduledUpdateReminders() const override { return true; }
    void standardUserDriverWillHandleShowingUpdate(UpdateShowing showing, const UpdateItem& update,
                                                   UserUpdateState state) override;

    QTemporaryDir directory;
    Maintainer maintainer;
    std::unique_ptr<HttpsServer> server;
    fake::RecordingLog log;
    std::string feedUrl;                                          ///< of the installation
    std::string publicKey = encodeBase64(maintainer.publicKey()); ///< of the installation
    UpdaterSetup setup;
    int shown = 0;

private:
    QSslConfiguration formerTrust_ = QSslConfiguration::defaultConfiguration();
    std::unique_ptr<StandardUpdaterController> controller_;
};

} // namespace kelvora::test
