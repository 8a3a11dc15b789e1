// SPDX-License-Identifier: MIT
#include "host/linux/updates/package_file.h"

#include <QDir>
#include <QFile>
#include <QTimer>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>
#include <vector>

namespace kelvora {
namespace {

constexpr std::size_t pieceSize = std::size_t{1024} * 1024;
constexpr const char* pattern = "kelvora_*.deb";

class Descriptor {
public:
    explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
    ~Descriptor() {
        if (descriptor_ >= 0) {
            close(descriptor_);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    [[nodiscard]] int get() const { return descriptor_; }

private:
    int descriptor_;
};

bool makePrivate(int directory) {
    struct stat status {};
    return fstat(directory, &status) == 0 && status.st_uid == geteuid() &&
           ((status.st_mode & 077) == 0 || fchmod(directory, 0700) == 0);
}

/// From the version, whose characters are known, never from an address. An epoch's colon is
/// written as the archive does.
std::string nameOf(const UpdateVersion& version, const UpdatePackage& package) {
    std::string text = version.text();
    if (const std::size_t colon = text.find(':'); colon != std::string::npos) {
        text.replace(colon, 1, "%3a");
    }
    return "kelvora_" + text + "_" + package.architecture + ".deb";
}

bool isSameState(const struct stat& left, const struct stat& right) {
    const auto isSameTime = [](const timespec& one, const timespec& other) {
        return one.tv_sec == other.tv_sec && one.tv_nsec == other.tv_nsec;
    };
    return left.st_dev == right.st_dev && left.st_ino == right.st_ino &&
           left.st_size == right.st_size && left.st_nlink == right.st_nlink &&
           isSameTime(left.st_mtim, right.st_mtim) && isSameTime(left.st_ctim, right.st_ctim);
}

} // namespace

std::unique_ptr<PackageFile> PackageFile::create(const std::string& directory,
                                                 const UpdateVersion& version,
                                                 const UpdatePackage& package) {
    if (!QDir().mkpath(QString::fromStdString(directory))) {
        return nullptr;
    }
    const Descriptor parent(
        open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (parent.get() < 0 || !makePrivate(parent.get())) {
        return nullptr;
    }
    const std::string name = nameOf(version, package);
    const int descriptor = openat(parent.get(), name.c_str(),
                                  O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (descriptor < 0) {
        return nullptr;
    }
    return std::unique_ptr<PackageFile>(new PackageFile(descriptor, directory + "/" + name));
}

void PackageFile::removeAll(const std::string& directory) {
    QDir packages(QString::fromStdString(directory));
    for (const QString& name : packages.entryList({QString::fromLatin1(pattern)},
                                                  QDir::Files | QDir::System | QDir::Hidden)) {
        packages.remove(name);
    }
}

PackageFile::~PackageFile() {
    if (!isKept_) {
        unlink(path_.c_str());
    }
    close(descriptor_);
}

bool PackageFile::append(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(descriptor_, bytes.data(), bytes.size());
        if (written > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(written));
        } else if (written == 0 || errno != EINTR) {
            return false;
        }
    }
    return true;
}

struct PackageInspection::Reading {
    const PackageFile& file;
    std::string statement;
    UpdatePackage package;
    Ed25519PublicKey key;
    std::function<void(bool)> ended;
    struct stat before {};
    off_t position = 0;
    std::vector<char> piece = std::vector<char>(pieceSize);
    Sha256 digest;

    [[nodiscard]] bool isUntouched() const {
        struct stat opened {};
        struct stat named {};
        return fstat(file.descriptor(), &opened) == 0 && lstat(file.path().c_str(), &named) == 0 &&
               isSameState(before, opened) && isSameState(before, named);
    }
    [[nodiscard]] bool isGenuine() {
        return position == package.size && digest.finish() == package.sha256 &&
               isSignedBy(key, statement, package.signature) && S_ISREG(before.st_mode) &&
               before.st_nlink == 1 && isUntouched();
    }
};

PackageInspection::PackageInspection(const PackageFile& file, const UpdateVersion& version,
                                     const UpdatePackage& package, const Ed25519PublicKey& key,
                                     std::function<void(bool)> ended)
    : reading_(new Reading{.file = file,
                           .statement = packageStatement(version, package),
                           .package = package,
                           .key = key,
                           .ended = std::move(ended),
                           .digest = {}}),
      rounds_(std::make_unique<QTimer>()) {
    if (fstat(file.descriptor(), &reading_->before) != 0) {
        reading_->before = {}; // no regular file: not genuine
    }
    QObject::connect(rounds_.get(), &QTimer::timeout, rounds_.get(), [this] { readOn(); });
    rounds_->start(0);
}

PackageInspection::~PackageInspection() = default;

void PackageInspection::readOn() {
    const ssize_t got =
        pread(reading_->file.descriptor(), reading_->piece.data(), pieceSize, reading_->position);
    if (got > 0 && reading_->position <= reading_->package.size) {
        reading_->digest.add({reading_->piece.data(), static_cast<std::size_t>(got)});
        reading_->position += got;
        return;
    }
    rounds_->stop();
    rounds_.release()->deleteLater(); // this may be destroyed in its signal
    const bool isGenuine = got == 0 && reading_->isGenuine();
    const auto ended = std::move(reading_->ended);
    ended(isGenuine);
}

} // namespace kelvora
