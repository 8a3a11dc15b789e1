// SPDX-License-Identifier: MIT
#include "host/linux/updates/standard_updater_controller.h"
#include "host/linux/updates/update_window.h"
#include "tests/host/desktop/temporary_directory.h"
#include "tests/host/updates/https_server.h"
#include "tests/host/updates/maintainer.h"
#include "tests/support/fake_desktop/recording_log.h"

#include <QAbstractButton>
#include <QApplication>
#include <QPlainTextEdit>
#include <QTcpServer>
#include <QTimer>

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>

namespace kelvora {
namespace {

namespace fs = std::filesystem;
using test::Document;
using test::HttpsServer;

template <typename Widget>
Widget* inWindow(const char* name) {
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (dynamic_cast<UpdateWindow*>(widget) && widget->isVisible())
            return widget->findChild<Widget*>(name);
    return nullptr;
}

/// A user's home with an installed program, a server and a maintainer, and an installer that only
/// keeps what it is given. Everything but that is real.
class Rig final : public UserDriverDelegate {
public:
    Rig() {
        const QSslConfiguration identity = test::makeIdentity(QString::fromStdString(path("")));
        QSslConfiguration trust = formerTrust_;
        trust.addCaCertificate(identity.localCertificate());
        QSslConfiguration::setDefaultConfiguration(trust);
        server = std::make_unique<HttpsServer>(identity);
        feedUrl = server->url("/feed");
        // Notes what it may see, and takes a copy.
        files.write("installer",
                    "#!/bin/sh\n[ \"$1\" = install ] || exit 9\nstat -c '%a %n' \"$2\" "
                    "\"$(dirname \"$2\")\" >" +
                        path("seen") + "\ncp \"$2\" " + path("handed-over") + "\n");
        fs::permissions(path("installer"), fs::perms::owner_all);
        publish({});
    }
    ~Rig() override {
        controller_.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QSslConfiguration::setDefaultConfiguration(formerTrust_);
    }

    [[nodiscard]] std::string path(const std::string& name) const { return files.path / name; }
    /// Publishes a feed whose package is served at "/package".
    void publish(Document document) {
        document.url = server->url("/package");
        server->serve("/package", document.package);
        server->serve("/feed", maintainer.feed(json(document, maintainer)));
    }
    /// Starts the program, again if it ran, and looks for updates.
    void check() {
        files.write("updates.json",
                    R"({"feed": ")" + feedUrl + R"(", "publicKey": ")" + publicKey + R"("})");
        controller_.reset(); // before another begins
        controller_ = std::make_unique<StandardUpdaterController>(setup, *this, log);
        controller_->start();
        controller_->checkForUpdates();
    }
    /// Waits until the window offers the button, and presses it.
    static void click(const char* name) {
        QAbstractButton* button = nullptr;
        waitUntil([&] {
            button = inWindow<QAbstractButton>(name);
            return button && button->isVisible();
        });
        ASSERT_TRUE(button);
        button->click();
    }
    /// Serves the loop until `condition` holds; fails the test when it does not come to.
    static void waitUntil(const std::function<bool()>& condition) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (!condition()) {
            ASSERT_LT(std::chrono::steady_clock::now(), end) << "waited in vain";
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents,
                                            20);
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    }
    /// Waits until that is how it ended.
    void waitFor(UpdateNotice notice) {
        const std::string name(nameOf(notice));
        waitUntil([&] {
            const auto lines = log.lines();
            return lines.size() > told_ && lines.back().message.ends_with(name);
        });
        told_ = log.lines().size();
    }
    /// Every file below the home with its content, and every directory.
    [[nodiscard]] std::string home() const {
        std::string found;
        if (fs::exists(path("home")))
            for (const auto& entry : fs::recursive_directory_iterator(path("home")))
                found += entry.path().string() + files.read(entry.path()) + "\n";
        return found;
    }
    [[nodiscard]] bool supportsGentleScheduledUpdateReminders() const override { return true; }
    void standardUserDriverWillHandleShowingUpdate(UpdateShowing, const UpdateItem&,
                                                   UserUpdateState) override {
        ++shown;
    }

    TemporaryDirectory files;
    test::Maintainer maintainer;
    std::unique_ptr<HttpsServer> server;
    fake::RecordingLog log;
    std::string feedUrl;                                          ///< of the installation
    std::string publicKey = encodeBase64(maintainer.publicKey()); ///< of the installation
    const std::string cache = path("home/cache/updates");
    const std::string package = cache + "/kelvora_1.2.0_amd64.deb";
    UpdaterSetup setup{.configurationFile = path("updates.json"),
                       .installedVersion = "1.1",
                       .architecture = "amd64",
                       .stateDirectory = path("home/state"),
                       .cacheDirectory = cache,
                       .installers = {{.program = "kelvora-no-such-installer", .arguments = {}},
                                      {.program = path("installer"),
                                       .arguments = {"install"},
                                       .kind = InstallerCommand::Kind::installs}}};
    int shown = 0;

private:
    QSslConfiguration formerTrust_ = QSslConfiguration::defaultConfiguration();
    std::unique_ptr<StandardUpdaterController> controller_;
    std::size_t told_ = 0;
};

std::string run(const char* program, const std::vector<std::string>& arguments) {
    QProcess process;
    QStringList list;
    for (const std::string& argument : arguments)
        list << QString::fromStdString(argument);
    process.start(program, list);
    EXPECT_TRUE(process.waitForFinished() && process.exitCode() == 0) << program;
    return process.readAllStandardOutput().toStdString();
}

TEST(UpdatesOverHttps, InstallWhatTheMaintainersToolHasSigned) {
    Rig rig;
    rig.files.write("tree/DEBIAN/control",
                    "Package: kelvora\nVersion: 1:1.2~rc1-1\nArchitecture: amd64\n"
                    "Maintainer: A <a@example.org>\nDescription: x\n");
    rig.files.write("notes", "A \"quoted\" \\ <b>line</b>\n\n\tи ещё\n");
    run("dpkg-deb", {"--build", rig.path("tree"), rig.path("new.deb")});
    const std::string key = run(KELVORA_SIGN_UPDATE, {"key", rig.path("key"), "--no-passphrase"});
    const std::string bytes = rig.files.read("new.deb");
    rig.server->serve("/new.deb", bytes);
    rig.server->serve("/latest",
                      run(KELVORA_SIGN_UPDATE,
                          {"feed", "--key", rig.path("key"), "--base-url", rig.server->url("/"),
                           "--notes", rig.path("notes"), "--minimum", "1.1", rig.path("new.deb")}));
    rig.server->redirect("/feed", "/latest");
    rig.check();
    rig.waitFor(UpdateNotice::forged); // the key is not the installation's yet
    rig.publicKey = key.substr(0, key.find('\n'));
    rig.check();
    Rig::waitUntil([&] { return rig.shown == 1; });
    EXPECT_EQ(inWindow<QPlainTextEdit>("notes")->toPlainText().toStdString() + "\n",
              rig.files.read("notes"));
    EXPECT_NE(rig.server->lastRequest().find("\r\nUser-Agent: Kelvora\r\n"), std::string::npos)
        << "nobody is told which version runs here";
    Rig::click("proceed");
    rig.waitFor(UpdateNotice::installed);
    EXPECT_EQ(rig.files.read("handed-over"), bytes);
    EXPECT_EQ(rig.files.read("seen"),
              "600 " + rig.cache + "/kelvora_1%3a1.2~rc1-1_amd64.deb\n700 " + rig.cache + "\n");
    EXPECT_TRUE(fs::is_empty(rig.cache));
}

struct Threat {
    const char* name;
    UpdateNotice notice;
    std::function<void(Rig&)> prepare;
};

/// How many offers are made of it, and nothing is installed or left behind.
void expectHarmless(const Threat& threat, int offers) {
    SCOPED_TRACE(threat.name);
    Rig rig;
    threat.prepare(rig);
    rig.check();
    if (offers != 0)
        Rig::click("proceed");
    rig.waitFor(threat.notice);
    EXPECT_EQ(rig.shown, offers);
    EXPECT_FALSE(fs::exists(rig.path("handed-over")));
    EXPECT_EQ(rig.home().find(".deb"), std::string::npos) << rig.home();
}

TEST(UpdatesOverHttps, ABadFeedIsNoOffer) {
    QTcpServer plain; // must never hear of us
    ASSERT_TRUE(plain.listen(QHostAddress::LocalHost));
    const std::string insecure = "http://127.0.0.1:" + std::to_string(plain.serverPort()) + "/";
    const Threat threats[]{
        {"a certificate of nobody's", UpdateNotice::untrusted,
         [](Rig& rig) {
             rig.server = std::make_unique<HttpsServer>(
                 test::makeIdentity(QString::fromStdString(rig.path(""))));
             rig.feedUrl = rig.server->url("/feed");
             rig.publish({});
         }},
        {"another name than the certificate's", UpdateNotice::untrusted,
         [](Rig& rig) { rig.feedUrl.replace(8, 9, "localhost"); }},
        {"redirected to http", UpdateNotice::insecure,
         [&](Rig& rig) { rig.server->redirect("/feed", insecure); }},
        {"endless", UpdateNotice::oversized,
         [](Rig& rig) {
             rig.server->on("/feed", "HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n" +
                                         std::string(maximumFeedSize + 1, ' '));
         }},
        {"replayed", UpdateNotice::replayed,
         [](Rig& rig) {
             rig.publish({.serial = "8", .version = "1.1"});
             rig.check();
             rig.waitFor(UpdateNotice::upToDate);
             rig.publish({});
         }},
    };
    for (const Threat& threat : threats)
        expectHarmless(threat, 0);
    EXPECT_FALSE(plain.hasPendingConnections());
}

/// Sends the first half of the package, has `meddle` done, then sends the rest.
std::function<void(Rig&)> meddling(std::function<void(const std::string& file)> meddle) {
    return [meddle](Rig& rig) {
        rig.server->on("/package", [meddle, &rig](QTcpSocket& client) {
            HttpsServer::send(client, HttpsServer::headOf(11) + "the pa");
            auto* timer = new QTimer(&client);
            QObject::connect(timer, &QTimer::timeout, &client, [meddle, timer, &rig, &client] {
                if (!fs::exists(rig.package) || fs::file_size(rig.package) != 6)
                    return;
                timer->stop();
                meddle(rig.package);
                HttpsServer::send(client, "ckage");
                client.disconnectFromHost();
            });
            timer->start(5);
        });
    };
}

TEST(UpdatesOverHttps, ABadPackageReachesNoInstaller) {
    const auto served = [](const char* package) {
        return [package](Rig& rig) { rig.server->serve("/package", package); };
    };
    const Threat threats[]{
        {"other bytes", UpdateNotice::damaged, served("THE package")},
        {"longer", UpdateNotice::oversized, served("the package!")},
        {"broken off", UpdateNotice::unreachable,
         [](Rig& rig) { rig.server->on("/package", HttpsServer::headOf(11) + "the"); }},
        {"signed as another version", UpdateNotice::damaged,
         [](Rig& rig) {
             rig.publish({.signature = rig.maintainer.packageSignature("1.0", "the package")});
         }},
        {"replaced by another file", UpdateNotice::damaged, meddling([](const std::string& file) {
             std::ofstream(file + "-") << "the package";
             fs::rename(file + "-", file);
         })},
        {"replaced by a link", UpdateNotice::damaged, meddling([](const std::string& file) {
             fs::rename(file, file + ".old.deb");
             fs::create_symlink(file + ".old.deb", file);
         })},
        {"written into", UpdateNotice::damaged, meddling([](const std::string& file) {
             std::fstream(file, std::ios::in | std::ios::out) << "THE";
         })},
        {"a second name kept", UpdateNotice::damaged,
         meddling([](const std::string& file) { fs::create_hard_link(file, file + ".old.deb"); })},
        {"a directory that is a link", UpdateNotice::storage,
         [](Rig& rig) {
             fs::create_directories(rig.path("home/cache/elsewhere"));
             fs::create_directory_symlink("elsewhere", rig.cache);
         }},
    };
    for (const Threat& threat : threats)
        expectHarmless(threat, 1);
}

} // namespace
} // namespace kelvora
