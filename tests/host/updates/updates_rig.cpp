// SPDX-License-Identifier: MIT
#include "tests/host/updates/updates_rig.h"

#include "host/linux/updates/update_text.h"
#include "host/linux/updates/update_window.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDirIterator>
#include <QFile>
#include <QLabel>
#include <QPlainTextEdit>
#include <QSslCertificate>

#include <gtest/gtest.h>

#include <chrono>

namespace kelvora::test {
namespace {

UpdateWindow* openWindow() {
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (auto* window = dynamic_cast<UpdateWindow*>(widget); window && window->isVisible())
            return window;
    return nullptr;
}

std::string contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : std::string();
}

} // namespace

UpdatesRig::UpdatesRig() {
    const QSslConfiguration identity = makeIdentity(directory.path());
    QSslConfiguration trust = formerTrust_;
    trust.addCaCertificate(identity.localCertificate());
    QSslConfiguration::setDefaultConfiguration(trust);
    server = std::make_unique<HttpsServer>(identity);
    feedUrl = server->url("/feed");

    // Notes what it may see, and takes a copy.
    write("installer", "#!/bin/sh\n[ \"$1\" = install ] || exit 9\nstat -c '%a %n' \"$2\" "
                       "\"$(dirname \"$2\")\" >" +
                           path("seen") + "\ncp \"$2\" " + path("handed-over") + "\n");
    QFile::setPermissions(QString::fromStdString(path("installer")),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    setup = {.configurationFile = path("updates.json"),
             .installedVersion = "1.1",
             .architecture = "amd64",
             .stateDirectory = path("home/state"),
             .cacheDirectory = path("home/cache/updates"),
             .installers = {{.program = "kelvora-no-such-installer", .arguments = {}},
                            {.program = path("installer"),
                             .arguments = {"install"},
                             .kind = InstallerCommand::Kind::installs}}};
}

UpdatesRig::~UpdatesRig() {
    quit();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QSslConfiguration::setDefaultConfiguration(formerTrust_);
}

void UpdatesRig::launch() {
    write("updates.json", R"({"feed": ")" + feedUrl + R"(", "publicKey": ")" + publicKey + R"("})");
    controller_ = std::make_unique<StandardUpdaterController>(setup, *this, log);
    controller_->start();
}

void UpdatesRig::publish(Document document) {
    document.url = server->url("/package");
    server->serve("/package", document.package);
    server->serve("/feed", maintainer.feed(json(document, maintainer)));
}

std::string UpdatesRig::text(const char* part) const {
    const UpdateWindow* window = openWindow();
    if (!window)
        return {};
    if (const auto* notes = window->findChild<QPlainTextEdit*>(part))
        return notes->toPlainText().toStdString();
    const auto* label = window->findChild<QLabel*>(part);
    return label ? label->text().toStdString() : std::string();
}

bool UpdatesRig::isWindowOpen() const {
    return openWindow() != nullptr;
}

void UpdatesRig::click(const char* button) {
    QAbstractButton* found = nullptr;
    waitUntil([&] {
        found = openWindow() ? openWindow()->findChild<QAbstractButton*>(button) : nullptr;
        return found && found->isVisible();
    });
    if (found)
        found->click();
}

void UpdatesRig::waitUntil(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            ADD_FAILURE() << "waited in vain; the window says: " << text("heading");
            return;
        }
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents | QEventLoop::AllEvents, 20);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

void UpdatesRig::waitForNotice(UpdateNotice notice) {
    const auto isNotice = [&] {
        const UpdateWindow* window = openWindow();
        const auto* heading = window ? window->findChild<QLabel*>("heading") : nullptr;
        const QString start = heading ? heading->text().section(' ', 0, 0) : QString();
        return !start.isEmpty() && start != "Checking" && start != "Downloading" &&
               start != "Installing";
    };
    waitUntil(isNotice);
    const NoticeScreen screen{.notice = notice, .version = "1.1", .place = {}};
    EXPECT_EQ(text("body"), UpdateText::of(screen).body.toStdString());
}

std::map<std::string, std::string> UpdatesRig::machine() const {
    std::map<std::string, std::string> found;
    QDirIterator entries(QString::fromStdString(path("home")),
                         QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QString entry = entries.next();
        found[entry.toStdString()] = contentOf(entry);
    }
    return found;
}

std::string UpdatesRig::path(const std::string& name) const {
    return directory.path().toStdString() + "/" + name;
}

std::string UpdatesRig::read(const std::string& name) const {
    return contentOf(QString::fromStdString(path(name)));
}

void UpdatesRig::write(const std::string& name, const std::string& content) const {
    QFile file(QString::fromStdString(path(name)));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content.data(), static_cast<qint64>(content.size()));
}

void UpdatesRig::standardUserDriverWillHandleShowingUpdate(UpdateShowing showing, const UpdateItem&,
                                                           UserUpdateState) {
    shown += showing == UpdateShowing::byController ? 1 : 0;
}

} // namespace kelvora::test
