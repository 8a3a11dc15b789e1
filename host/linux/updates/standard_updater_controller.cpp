// SPDX-License-Identifier: MIT
#include "host/linux/updates/standard_updater_controller.h"

#include "host/linux/updates/package_file.h"
#include "host/linux/updates/update_transfer.h"
#include "host/linux/updates/update_window.h"

#include <QDir>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QTimer>

#include <utility>

namespace kelvora {
namespace {

using namespace std::chrono_literals;

constexpr std::string_view category = "Updates"; // of the log lines
constexpr std::int64_t longestSettingsFile = std::int64_t{16} * 1024;
constexpr UpdateTransfer::Limits feedLimits{.bytes = maximumFeedSize, .silence = 30s, .whole = 60s};
constexpr std::chrono::seconds packageSilence = 60s;
constexpr std::chrono::seconds packageWhole = 2h;

/// A base directory of the session. Relative ones are to be ignored, as XDG has it.
QString baseDirectory(const char* variable, const char* otherwise) {
    const QString named = qEnvironmentVariable(variable);
    return QDir::isAbsolutePath(named) ? named : QDir::homePath() + "/" + otherwise;
}

} // namespace

UpdaterSetup sessionUpdaterSetup(std::string configurationFile, std::string installedVersion) {
    return {
        .configurationFile = std::move(configurationFile),
        .installedVersion = std::move(installedVersion),
        .architecture = debianArchitecture(),
        .stateDirectory =
            (baseDirectory("XDG_STATE_HOME", ".local/state") + "/kelvora").toStdString(),
        .cacheDirectory =
            (baseDirectory("XDG_CACHE_HOME", ".cache") + "/kelvora/updates").toStdString(),
        .installers = debianInstallers(),
    };
}

StandardUpdaterController::StandardUpdaterController(UpdaterSetup setup,
                                                     UserDriverDelegate& delegate, LogSink& log)
    : setup_(std::move(setup)), delegate_(delegate), log_(log),
      flow_(readConfiguration(), readMemory(), *this), installer_(setup_.installers) {}

StandardUpdaterController::~StandardUpdaterController() = default;

std::optional<UpdateFlow::Setup> StandardUpdaterController::readConfiguration() {
    if (!QFileInfo::exists(QString::fromStdString(setup_.configurationFile))) {
        return std::nullopt;
    }
    const auto content = readSmallFile(setup_.configurationFile, longestSettingsFile);
    const auto configuration = content ? parseUpdateConfiguration(*content) : std::nullopt;
    const auto installed = UpdateVersion::parse(setup_.installedVersion);
    if (!configuration || !installed) {
        log(LogLevel::error, "the configuration is damaged; updates are off");
        return std::nullopt;
    }
    key_ = configuration->publicKey;
    return UpdateFlow::Setup{
        .configuration = *configuration,
        .installed = *installed,
        .architecture = setup_.architecture,
        .gentleReminders = delegate_.supportsGentleScheduledUpdateReminders(),
        .spread = QRandomGenerator::global()->generateDouble(),
    };
}

std::string StandardUpdaterController::memoryFile() const {
    return setup_.stateDirectory + "/updates.json";
}

std::optional<UpdateMemory> StandardUpdaterController::readMemory() {
    const auto content = readSmallFile(memoryFile(), longestSettingsFile);
    auto memory = content ? parseUpdateMemory(*content) : std::nullopt;
    if (content && !memory) {
        log(LogLevel::error, "what was remembered of earlier checks is damaged");
    }
    return memory;
}

void StandardUpdaterController::remember(const UpdateMemory& memory) {
    if (!replacePrivateFile(memoryFile(), formatUpdateMemory(memory))) {
        log(LogLevel::error, "the time and serial of this check cannot be stored");
    }
}

std::chrono::sys_seconds StandardUpdaterController::now() {
    return std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
}

void StandardUpdaterController::wakeAfter(std::chrono::seconds pause) {
    if (!timer_) {
        timer_ = std::make_unique<QTimer>();
        timer_->setSingleShot(true);
        timer_->setTimerType(Qt::VeryCoarseTimer);
        QObject::connect(timer_.get(), &QTimer::timeout, timer_.get(),
                         [this] { flow_.timeHasCome(); });
    }
    timer_->start(pause);
}

void StandardUpdaterController::fetchFeed(const std::string& url) {
    feed_.clear();
    transfer_ = std::make_unique<UpdateTransfer>(
        url, feedLimits,
        [this](std::string_view bytes) {
            feed_.append(bytes);
            return true;
        },
        [this](std::optional<UpdateNotice> failure) {
            transfer_.reset();
            if (failure) {
                flow_.transferFailed(*failure);
            } else {
                flow_.feedArrived(std::exchange(feed_, {}));
            }
        });
}

void StandardUpdaterController::fetchPackage(const UpdateOffer& offer) {
    offer_ = offer;
    PackageFile::removeAll(setup_.cacheDirectory);
    package_ = PackageFile::create(setup_.cacheDirectory, offer.version, offer.package);
    transfer_ = std::make_unique<UpdateTransfer>(
        offer.package.url,
        UpdateTransfer::Limits{
            .bytes = offer.package.size, .silence = packageSilence, .whole = packageWhole},
        [this, received = std::int64_t{0}](std::string_view bytes) mutable {
            if (!package_ || !package_->append(bytes)) {
                return false;
            }
            received += static_cast<std::int64_t>(bytes.size());
            flow_.packageReceived(received);
            return true;
        },
        [this](std::optional<UpdateNotice> failure) {
            transfer_.reset();
            if (failure || !package_) {
                package_.reset();
                flow_.transferFailed(failure.value_or(UpdateNotice::storage));
            } else {
                flow_.packageArrived();
            }
        });
}

void StandardUpdaterController::abandonTransfer() {
    transfer_.reset();
    package_.reset();
}

void StandardUpdaterController::removeLeftovers() {
    PackageFile::removeAll(setup_.cacheDirectory);
}

void StandardUpdaterController::installPackage() {
    inspection_ =
        std::make_unique<PackageInspection>(*package_, offer_->version, offer_->package, key_,
                                            [this](bool isGenuine) { inspected(isGenuine); });
}

void StandardUpdaterController::inspected(bool isGenuine) {
    inspection_.reset();
    if (!isGenuine) {
        ended(UpdateNotice::damaged);
        return;
    }
    // The installer may outlive this program: from here on the file is removed only after it.
    package_->keep();
    installer_.install(package_->path(), [this](UpdateNotice notice) { ended(notice); });
}

void StandardUpdaterController::ended(UpdateNotice notice) {
    const bool isLeft = notice == UpdateNotice::noInstaller || notice == UpdateNotice::handedOver;
    const std::string place = isLeft ? package_->path() : std::string();
    package_.reset();
    if (!isLeft) {
        removeLeftovers();
    }
    flow_.installationEnded(notice, place);
}

void StandardUpdaterController::show(const UpdateScreen& screen, UpdatePresentation presentation) {
    if (!window_) {
        window_ =
            std::make_unique<UpdateWindow>([this](UpdateAction action) { flow_.act(action); });
    }
    window_->present(screen, presentation);
}

void StandardUpdaterController::closeWindow() {
    if (window_) {
        window_->hide();
        window_.release()->deleteLater(); // it may be what calls
    }
}

void StandardUpdaterController::willShow(UpdateShowing showing, const UpdateItem& update,
                                         UserUpdateState state) {
    delegate_.standardUserDriverWillHandleShowingUpdate(showing, update, state);
}

void StandardUpdaterController::log(LogLevel level, std::string_view message) {
    log_.write(level, category, message);
}

} // namespace kelvora
