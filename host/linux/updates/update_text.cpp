// SPDX-License-Identifier: MIT
#include "host/linux/updates/update_text.h"

#include <QLocale>

namespace kelvora {
namespace {

QString sizeText(std::int64_t bytes) {
    return QLocale().formattedDataSize(bytes, 1, QLocale::DataSizeSIFormat);
}

} // namespace

struct UpdateText::ForScreen {
    UpdateText operator()(const CheckingScreen&) const {
        return {.heading = tr("Checking for updates\u2026"), .dismiss = tr("Cancel")};
    }
    UpdateText operator()(const OfferScreen& screen) const {
        return {
            .heading =
                tr("Kelvora %1 is available").arg(QString::fromStdString(screen.update.version)),
            .body =
                tr("You have version %1. The download is %2.")
                    .arg(QString::fromStdString(screen.installedVersion), sizeText(screen.size)),
            .proceed = tr("&Install Update"),
            .dismiss = tr("&Later")};
    }
    UpdateText operator()(const DownloadingScreen& screen) const {
        return {.heading = tr("Downloading Kelvora %1").arg(QString::fromStdString(screen.version)),
                .body = tr("%1 of %2").arg(sizeText(screen.received), sizeText(screen.size)),
                .dismiss = tr("Cancel")};
    }
    UpdateText operator()(const InstallingScreen& screen) const {
        return {.heading = tr("Installing Kelvora %1").arg(QString::fromStdString(screen.version)),
                .body = tr("The system\u2019s installer is at work. It may ask for an "
                           "administrator\u2019s password."),
                .dismiss = tr("&Hide")};
    }
    UpdateText operator()(const NoticeScreen& screen) const { return ofNotice(screen); }
};

UpdateText UpdateText::of(const UpdateScreen& screen) {
    return std::visit(ForScreen{}, screen);
}

QString UpdateText::windowTitle() {
    return tr("Software Update");
}

QString UpdateText::notesLabel() {
    return tr("What is new");
}

QString UpdateText::progressLabel() {
    return tr("Progress");
}

UpdateText UpdateText::ofNotice(const NoticeScreen& screen) {
    UpdateText text{.body = bodyOf(screen), .dismiss = tr("&Close")};
    switch (screen.notice) {
    case UpdateNotice::systemManaged:
        text.heading = tr("Updates come with the system");
        break;
    case UpdateNotice::upToDate:
        text.heading = tr("Kelvora is up to date");
        break;
    case UpdateNotice::installed:
        text.heading = tr("Kelvora %1 is installed").arg(QString::fromStdString(screen.version));
        break;
    case UpdateNotice::handedOver:
        text.heading = tr("The package has been opened");
        break;
    case UpdateNotice::tooOld:
    case UpdateNotice::noPackage:
    case UpdateNotice::noInstaller:
        text.heading = tr("Kelvora %1 has to be installed by hand")
                           .arg(QString::fromStdString(screen.version));
        break;
    case UpdateNotice::storage:
    case UpdateNotice::damaged:
    case UpdateNotice::installerFailed:
        text.heading = tr("The update was not installed");
        break;
    case UpdateNotice::unreachable:
    case UpdateNotice::timedOut:
    case UpdateNotice::serverError:
    case UpdateNotice::untrusted:
    case UpdateNotice::insecure:
    case UpdateNotice::oversized:
    case UpdateNotice::forged:
    case UpdateNotice::malformed:
    case UpdateNotice::expired:
    case UpdateNotice::replayed:
        text.heading = tr("Updates cannot be fetched");
        break;
    }
    if (isWorthRetrying(screen.notice)) {
        text.proceed = tr("&Try Again");
    }
    return text;
}

QString UpdateText::bodyOf(const NoticeScreen& screen) {
    const QString version = QString::fromStdString(screen.version);
    switch (screen.notice) {
    case UpdateNotice::systemManaged:
        return tr("This copy of Kelvora was installed by the system, which also brings its new "
                  "versions. Use the system\u2019s software updater.");
    case UpdateNotice::upToDate:
        return tr("You have version %1, and there is none newer.").arg(version);
    case UpdateNotice::tooOld:
        return tr("This copy is too old to be updated directly. Download the new version from "
                  "where you got this one, and install it.");
    case UpdateNotice::noPackage:
        return tr("There is no package of it for this kind of computer. Look where you got this "
                  "copy whether there is another way to install it.");
    case UpdateNotice::unreachable:
        return tr("The update server cannot be reached. Check the network connection, then try "
                  "again.");
    case UpdateNotice::timedOut:
        return tr("The update server takes too long to answer. Try again later, or on a faster "
                  "network.");
    case UpdateNotice::serverError:
        return tr("The update server reports an error. Try again later.");
    case UpdateNotice::untrusted:
        return tr("The connection to the update server is not secure, so nothing was downloaded. "
                  "If this network asks you to sign in, do that first. Check that the "
                  "computer\u2019s date and time are right, then try again.");
    case UpdateNotice::insecure:
        return tr("The update server led to an address that is not secure, so nothing was "
                  "downloaded. Try again later, or on another network.");
    case UpdateNotice::oversized:
        return tr("The update server sent more than it should, so it was thrown away. Try again "
                  "later, or on another network.");
    case UpdateNotice::forged:
        return tr("What came from the update server is not signed by the makers of Kelvora, so it "
                  "was thrown away. Try again on another network. If it stays like this, tell "
                  "them.");
    case UpdateNotice::malformed:
        return tr("This version does not understand what the update server says. Try again later. "
                  "If it stays like this, download the new version by hand.");
    case UpdateNotice::expired:
        return tr("What the update server says is out of date. Check that the computer\u2019s date "
                  "and time are right, then try again later.");
    case UpdateNotice::replayed:
        return tr("The update server offers something older than before, so it was thrown away. "
                  "Try again later, or on another network.");
    case UpdateNotice::damaged:
        return tr("The package that arrived is not the one that the makers of Kelvora signed, so "
                  "it was thrown away. Try again later, or on another network.");
    case UpdateNotice::storage:
        return tr("The package cannot be stored. Make room on the disk, then try again.");
    case UpdateNotice::noInstaller:
        return tr("No program that installs packages was found. The verified package is here:\n%1")
            .arg(QString::fromStdString(screen.place));
    case UpdateNotice::installerFailed:
        return tr("The system\u2019s installer did not install it. It needs an "
                  "administrator\u2019s password, and no other installation may be running. Try "
                  "again.");
    case UpdateNotice::installed:
        return tr("Quit Kelvora and start it again to use the new version.");
    case UpdateNotice::handedOver:
        return tr("Install it in the window of the system\u2019s installer. Then quit Kelvora and "
                  "start it again.");
    }
    return {};
}

} // namespace kelvora
