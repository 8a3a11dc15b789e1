// SPDX-License-Identifier: MIT
#include "host/linux/updates/update_transfer.h"
#include "tests/host/updates/updates_rig.h"

#include <QProcess>
#include <QTcpServer>
#include <QTimer>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace kelvora {
namespace {

using test::Document;
using test::HttpsServer;
using test::UpdatesRig;

std::string run(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
    return process.readAllStandardOutput().toStdString();
}

TEST(UpdatesOverHttps, installsWhatTheMaintainersToolHasSigned) {
    UpdatesRig rig;
    const auto path = [&](const char* name) { return QString::fromStdString(rig.path(name)); };
    std::filesystem::create_directories(rig.path("tree/DEBIAN"));
    rig.write("tree/DEBIAN/control", "Package: kelvora\nVersion: 1:1.2~rc1-1\nArchitecture: amd64\n"
                                     "Maintainer: A <a@example.org>\nDescription: x\n");
    rig.write("notes", "A \"quoted\" \\ <b>line</b>\n\n\tи ещё\n");
    run("dpkg-deb", {"--build", path("tree"), path("new.deb")});
    const std::string key = run(KELVORA_SIGN_UPDATE, {"key", path("key"), "--no-passphrase"});
    const std::string feed =
        run(KELVORA_SIGN_UPDATE, {"feed", "--key", path("key"), "--base-url",
                                  QString::fromStdString(rig.server->url("/")), "--notes",
                                  path("notes"), "--minimum", "1.1", path("new.deb")});
    const std::string bytes = rig.read("new.deb");
    rig.server->serve("/new.deb", bytes);
    rig.server->serve("/latest", feed);
    rig.server->redirect("/feed", "/latest");

    rig.launch();
    rig.checkForUpdates();
    rig.waitForNotice(UpdateNotice::forged); // the key is not the installation's yet
    rig.publicKey = key.substr(0, key.find('\n'));
    rig.launch();
    rig.checkForUpdates();
    rig.waitUntil([&] { return rig.shown == 1; });
    EXPECT_EQ(rig.text("notes"), "A \"quoted\" \\ <b>line</b>\n\n\tи ещё");
    EXPECT_NE(rig.server->lastRequest().find("\r\nUser-Agent: Kelvora\r\n"), std::string::npos)
        << "nobody is told which version runs here";
    rig.click("proceed");
    rig.waitForNotice(UpdateNotice::installed);
    EXPECT_EQ(rig.handedOver(), bytes);
    const std::string cache = rig.setup.cacheDirectory;
    EXPECT_EQ(rig.read("seen"),
              "600 " + cache + "/kelvora_1%3a1.2~rc1-1_amd64.deb\n700 " + cache + "\n");
    EXPECT_TRUE(std::filesystem::is_empty(cache));
}

struct Threat {
    const char* name;
    UpdateNotice notice;
    std::function<void(UpdatesRig&)> prepare;
};

TEST(UpdatesOverHttps, aBadFeedChangesNothing) {
    QTcpServer plain; // must never hear of us
    ASSERT_TRUE(plain.listen(QHostAddress::LocalHost));
    const std::string insecure = "http://127.0.0.1:" + std::to_string(plain.serverPort()) + "/";
    const Threat threats[]{
        {"unreachable", UpdateNotice::unreachable,
         [](UpdatesRig& rig) { rig.feedUrl = "https://127.0.0.1:1/feed"; }},
        {"a certificate of nobody's", UpdateNotice::untrusted,
         [](UpdatesRig& rig) {
             rig.server =
                 std::make_unique<HttpsServer>(test::makeIdentity(rig.directory.filePath("home")));
             rig.feedUrl = rig.server->url("/feed");
             rig.publish({});
             std::filesystem::remove_all(rig.path("home"));
         }},
        {"another name than the certificate's", UpdateNotice::untrusted,
         [](UpdatesRig& rig) { rig.feedUrl.replace(8, 9, "localhost"); }},
        {"gone", UpdateNotice::serverError,
         [](UpdatesRig& rig) { rig.feedUrl = rig.server->url("/else"); }},
        {"redirected to http", UpdateNotice::insecure,
         [&](UpdatesRig& rig) { rig.server->redirect("/feed", insecure); }},
        {"redirected in a circle", UpdateNotice::insecure,
         [](UpdatesRig& rig) { rig.server->redirect("/feed", "/feed"); }},
        {"announced as oversized", UpdateNotice::oversized,
         [](UpdatesRig& rig) {
             rig.server->on("/feed", [](QTcpSocket& client) {
                 HttpsServer::send(client, HttpsServer::headOf(maximumFeedSize + 1));
             });
         }},
        {"endless", UpdateNotice::oversized,
         [](UpdatesRig& rig) {
             rig.server->on("/feed", [](QTcpSocket& client) {
                 HttpsServer::send(client, "HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n" +
                                               std::string(maximumFeedSize + 1, ' '));
             });
         }},
        {"packed, to swell on the way", UpdateNotice::forged,
         [](UpdatesRig& rig) {
             const std::string feed = rig.maintainer.feed(test::json({}, rig.maintainer));
             const std::string packed =
                 qCompress(QByteArray::fromStdString(feed)).mid(4).toStdString();
             rig.server->on("/feed", [packed](QTcpSocket& client) {
                 HttpsServer::send(client, "HTTP/1.1 200 OK\r\nContent-Encoding: deflate\r\n" +
                                               HttpsServer::headOf(packed.size()).substr(17) +
                                               packed);
             });
         }},
        {"signed by another", UpdateNotice::forged,
         [](UpdatesRig& rig) {
             const test::Maintainer stranger;
             rig.server->serve("/feed", stranger.feed(test::json({}, stranger)));
         }},
        {"malformed", UpdateNotice::malformed,
         [](UpdatesRig& rig) { rig.server->serve("/feed", rig.maintainer.feed("[1,")); }},
        {"frozen", UpdateNotice::expired,
         [](UpdatesRig& rig) { rig.publish({.expires = "2020-01-01T00:00:00Z"}); }},
        {"replayed", UpdateNotice::replayed,
         [](UpdatesRig& rig) {
             rig.publish({.serial = "8", .version = "1.1"});
             rig.launch();
             rig.checkForUpdates();
             rig.waitForNotice(UpdateNotice::upToDate);
             rig.quit();
             rig.publish({.serial = "7"});
         }},
    };
    for (const Threat& threat : threats) {
        SCOPED_TRACE(threat.name);
        UpdatesRig rig;
        rig.publish({});
        std::filesystem::create_directory(rig.path("home"));
        threat.prepare(rig);
        const auto before = rig.machine();
        rig.launch();
        rig.checkForUpdates();
        rig.waitForNotice(threat.notice);
        EXPECT_EQ(rig.machine(), before);
        EXPECT_EQ(rig.shown, 0);
        rig.click("dismiss");
        EXPECT_FALSE(rig.isWindowOpen());
    }
    EXPECT_FALSE(plain.hasPendingConnections());
}

/// Sends the first half of the package, has `meddle` done, then sends the rest.
std::function<void(UpdatesRig&)> meddling(std::function<void(const std::string& file)> meddle) {
    return [meddle](UpdatesRig& rig) {
        rig.server->on("/package", [meddle, &rig](QTcpSocket& client) {
            HttpsServer::send(client, HttpsServer::headOf(11) + "the pa");
            auto* timer = new QTimer(&client);
            QObject::connect(timer, &QTimer::timeout, &client, [meddle, timer, &rig, &client] {
                const std::string file = rig.setup.cacheDirectory + "/kelvora_1.2.0_amd64.deb";
                if (std::filesystem::exists(file) && std::filesystem::file_size(file) == 6) {
                    timer->stop();
                    meddle(file);
                    HttpsServer::send(client, "ckage");
                    client.disconnectFromHost();
                }
            });
            timer->start(5);
        });
    };
}

TEST(UpdatesOverHttps, aBadPackageReachesNoInstaller) {
    const auto served = [](const char* package) {
        return [package](UpdatesRig& rig) { rig.server->serve("/package", package); };
    };
    const Threat threats[]{
        {"other bytes", UpdateNotice::damaged, served("THE package")},
        {"shorter", UpdateNotice::damaged, served("the packag")},
        {"longer", UpdateNotice::oversized, served("the package!")},
        {"empty", UpdateNotice::damaged, served("")},
        {"broken off", UpdateNotice::unreachable,
         [](UpdatesRig& rig) {
             rig.server->on("/package", [](QTcpSocket& client) {
                 HttpsServer::send(client, HttpsServer::headOf(11) + "the");
                 client.disconnectFromHost();
             });
         }},
        {"redirected to http", UpdateNotice::insecure,
         [](UpdatesRig& rig) { rig.server->redirect("/package", "http://127.0.0.1:1/"); }},
        {"signed by another", UpdateNotice::damaged,
         [](UpdatesRig& rig) {
             rig.publish({.signature = test::Maintainer().packageSignature("1.2.0", "amd64",
                                                                           "the package")});
         }},
        {"signed as another version", UpdateNotice::damaged,
         [](UpdatesRig& rig) {
             rig.publish(
                 {.signature = rig.maintainer.packageSignature("1.0", "amd64", "the package")});
         }},
        {"replaced by another file", UpdateNotice::damaged, meddling([](const std::string& file) {
             std::ofstream(file + "-") << "the package";
             std::filesystem::rename(file + "-", file);
         })},
        {"replaced by a link", UpdateNotice::damaged, meddling([](const std::string& file) {
             std::filesystem::rename(file, file + ".old.deb");
             std::filesystem::create_symlink(file + ".old.deb", file);
         })},
        {"written into", UpdateNotice::damaged, meddling([](const std::string& file) {
             std::fstream(file, std::ios::in | std::ios::out) << "THE";
         })},
        {"a second name kept", UpdateNotice::damaged, meddling([](const std::string& file) {
             std::filesystem::create_hard_link(file, file + ".old.deb");
         })},
        {"a directory that is a link", UpdateNotice::storage,
         [](UpdatesRig& rig) {
             std::filesystem::create_directories(rig.path("home/cache"));
             std::filesystem::create_directory(rig.path("elsewhere"));
             std::filesystem::create_symlink(rig.path("elsewhere"), rig.setup.cacheDirectory);
         }},
    };
    for (const Threat& threat : threats) {
        SCOPED_TRACE(threat.name);
        UpdatesRig rig;
        rig.publish({});
        threat.prepare(rig);
        rig.launch();
        rig.checkForUpdates();
        rig.click("proceed");
        rig.waitForNotice(threat.notice);
        EXPECT_EQ(rig.handedOver(), "");
        for (const auto& [path, content] : rig.machine()) {
            EXPECT_EQ(path.find(".deb"), std::string::npos) << path;
        }
        EXPECT_TRUE(!std::filesystem::exists(rig.path("elsewhere")) ||
                    std::filesystem::is_empty(rig.path("elsewhere")));
    }
}

TEST(UpdatesOverHttps, aDownloadThatIsCancelledLeavesNothing) {
    for (const bool isQuit : {false, true}) {
        UpdatesRig rig;
        rig.publish({});
        bool isGone = false;
        rig.server->on("/package", [&](QTcpSocket& client) {
            HttpsServer::send(client, HttpsServer::headOf(11) + "the pa");
            QObject::connect(&client, &QTcpSocket::disconnected, &client, [&] { isGone = true; });
        });
        rig.launch();
        rig.checkForUpdates();
        rig.click("proceed");
        rig.waitUntil([&] { return rig.text("body").starts_with("6 "); });
        if (isQuit)
            rig.quit();
        else
            rig.click("dismiss");
        rig.waitUntil([&] { return isGone; });
        EXPECT_FALSE(rig.isWindowOpen());
        EXPECT_TRUE(std::filesystem::is_empty(rig.setup.cacheDirectory));
        EXPECT_EQ(rig.handedOver(), "");
    }
}

TEST(UpdatesOverHttps, saysWhatTheInstallerCameTo) {
    using Kind = InstallerCommand::Kind;
    const struct {
        const char* name;
        std::vector<InstallerCommand> installers;
        UpdateNotice notice;
        bool isLeft;
    } cases[]{
        {"fails", {{"false", {}, Kind::installs}}, UpdateNotice::installerFailed, false},
        {"opens", {{"true", {}, Kind::opens}}, UpdateNotice::handedOver, true},
        {"none", {{"kelvora-no-such-installer", {}, Kind::opens}}, UpdateNotice::noInstaller, true},
        {"cannot start",
         {{"/proc/self/mem", {}, Kind::opens}, {"/etc", {}, Kind::opens}},
         UpdateNotice::noInstaller,
         true},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        UpdatesRig rig;
        rig.setup.installers = row.installers;
        rig.publish({});
        rig.launch();
        rig.checkForUpdates();
        rig.click("proceed");
        const std::string message = "version 1.2.0: " + std::string(nameOf(row.notice));
        rig.waitUntil([&] {
            const auto lines = rig.log.lines();
            return !lines.empty() && lines.back().message == message;
        });
        const std::string file = rig.setup.cacheDirectory + "/kelvora_1.2.0_amd64.deb";
        EXPECT_EQ(std::filesystem::exists(file), row.isLeft);
        EXPECT_EQ(rig.text("body").find(file) != std::string::npos,
                  row.notice == UpdateNotice::noInstaller);
        // Once the new version runs, the next check sweeps up.
        rig.quit();
        rig.setup.installedVersion = "1.2.0";
        rig.launch();
        rig.checkForUpdates();
        rig.waitUntil([&] { return rig.text("heading") == "Kelvora is up to date"; });
        EXPECT_FALSE(std::filesystem::exists(file));
    }
}

TEST(UpdatesOverHttps, withoutAFeedUpdatesComeWithTheSystem) {
    UpdatesRig rig;
    rig.write("broken.json", R"({"feed": "http://127.0.0.1/", "publicKey": ""})");
    for (const char* file : {"none.json", "broken.json"}) {
        rig.setup.configurationFile = rig.path(file);
        rig.launch();
        rig.checkForUpdates();
        rig.waitForNotice(UpdateNotice::systemManaged);
        rig.click("dismiss");
    }
    EXPECT_EQ(rig.server->requests(), 0);
    EXPECT_EQ(rig.log.messages("Updates", LogLevel::error).size(), 1U);
    EXPECT_TRUE(rig.machine().empty());
}

TEST(UpdateTransfer, doesNotWaitForever) {
    using namespace std::chrono_literals;
    UpdatesRig rig;
    rig.server->on("/silent", [](QTcpSocket&) {});
    rig.server->on("/drip", [](QTcpSocket& client) {
        HttpsServer::send(client, HttpsServer::headOf(1000));
        auto* timer = new QTimer(&client);
        QObject::connect(timer, &QTimer::timeout, &client, [&] { HttpsServer::send(client, "x"); });
        timer->start(50ms);
    });
    const struct {
        const char* path;
        UpdateTransfer::Limits limits;
    } cases[]{{"/silent", {.bytes = 1000, .silence = 1s, .whole = 1h}},
              {"/drip", {.bytes = 1000, .silence = 1h, .whole = 1s}}};
    for (const auto& row : cases) {
        std::optional<UpdateNotice> end;
        UpdateTransfer transfer(
            rig.server->url(row.path), row.limits, [](std::string_view) { return true; },
            [&](std::optional<UpdateNotice> failure) { end = failure; });
        rig.waitUntil([&] { return end.has_value(); });
        EXPECT_EQ(end, UpdateNotice::timedOut) << row.path;
    }
}

} // namespace
} // namespace kelvora
