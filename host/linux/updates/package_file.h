// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/updates/update_feed.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>

class QTimer;

namespace kelvora {

/// A package on its way to the installer, in a directory that only this user can look into. Removed
/// with this object unless it is kept.
class PackageFile {
public:
    /// Makes `directory` where there is none. Null when it belongs to somebody else, when there is
    /// something of that name, or when the disk refuses.
    [[nodiscard]] static std::unique_ptr<PackageFile> create(const std::string& directory,
                                                             const UpdateVersion& version,
                                                             const UpdatePackage& package);
    /// Removes the packages that were kept there.
    static void removeAll(const std::string& directory);

    ~PackageFile();
    PackageFile(const PackageFile&) = delete;
    PackageFile& operator=(const PackageFile&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }
    [[nodiscard]] int descriptor() const { return descriptor_; }
    /// False when the disk refuses.
    [[nodiscard]] bool append(std::string_view bytes);
    void keep() { isKept_ = true; }

private:
    PackageFile(int descriptor, std::string path)
        : descriptor_(descriptor), path_(std::move(path)) {}

    int descriptor_;
    std::string path_;
    bool isKept_ = false;
};

/// Reads an opened package again, a piece in each round of the main loop, and tells whether it is
/// the signed one, is what its path leads to, and did not change meanwhile. Ends with this object.
class PackageInspection {
public:
    /// `ended` may destroy this object. The file outlives it.
    PackageInspection(const PackageFile& file, const UpdateVersion& version,
                      const UpdatePackage& package, const Ed25519PublicKey& key,
                      std::function<void(bool isGenuine)> ended);
    ~PackageInspection();
    PackageInspection(const PackageInspection&) = delete;
    PackageInspection& operator=(const PackageInspection&) = delete;

private:
    struct Reading;
    void readOn();

    std::unique_ptr<Reading> reading_;
    std::unique_ptr<QTimer> rounds_;
};

} // namespace kelvora
