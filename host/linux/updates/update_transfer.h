// SPDX-License-Identifier: MIT
#pragma once

#include "host/linux/updates/update_notice.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

class QNetworkAccessManager;
class QNetworkReply;
class QObject;
class QTimer;

namespace kelvora {

/// One GET over HTTPS on the main thread's loop, with the system's certificate authorities and
/// proxies; ends with this object. Redirections stay on HTTPS. Sends neither cookies nor anything
/// about this computer or its version.
class UpdateTransfer {
public:
    struct Limits {
        std::int64_t bytes;           ///< one more, announced or sent, ends the transfer
        std::chrono::seconds silence; ///< longest time in which nothing arrives
        std::chrono::seconds whole;   ///< longest time for all of it
    };
    /// Takes the next bytes; false when it cannot keep them.
    using Sink = std::function<bool(std::string_view bytes)>;
    /// The last call, never from inside the constructor; this object may be destroyed in it. No
    /// notice: the server has sent all that it meant to.
    using Ended = std::function<void(std::optional<UpdateNotice> failure)>;

    UpdateTransfer(const std::string& url, Limits limits, Sink sink, Ended ended);
    ~UpdateTransfer();
    UpdateTransfer(const UpdateTransfer&) = delete;
    UpdateTransfer& operator=(const UpdateTransfer&) = delete;

private:
    void checkAnnouncedSize();
    void takeBytes();
    void finish();
    void end(std::optional<UpdateNotice> failure);

    Limits limits_;
    Sink sink_;
    Ended ended_;
    std::int64_t received_ = 0;
    QNetworkAccessManager* manager_; // deleted by the loop
    QNetworkReply* reply_ = nullptr;
    std::unique_ptr<QTimer> deadline_;
    std::unique_ptr<QObject> connections_;
};

} // namespace kelvora
