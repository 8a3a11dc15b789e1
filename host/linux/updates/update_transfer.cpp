// SPDX-License-Identifier: MIT
#include "host/linux/updates/update_transfer.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>

#include <utility>

namespace kelvora {
namespace {

constexpr int mostRedirections = 5;
constexpr int statusOk = 200;
constexpr qint64 chunkSize = qint64{64} * 1024;

QNetworkRequest requestFor(const std::string& url, std::chrono::milliseconds silence) {
    QNetworkRequest request(QUrl(QString::fromStdString(url), QUrl::StrictMode));
    // From HTTPS, that is HTTPS only.
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setMaximumRedirectsAllowed(mostRedirections);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute,
                         QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    request.setHeader(QNetworkRequest::UserAgentHeader, "Kelvora");
    // Limits and signatures are about the bytes that are sent: nothing is to be unpacked on the
    // way.
    request.setRawHeader("Accept-Encoding", "identity");
    request.setTransferTimeout(static_cast<int>(silence.count()));
    return request;
}

UpdateNotice noticeFor(const QNetworkReply& reply) {
    switch (reply.error()) {
    case QNetworkReply::SslHandshakeFailedError:
        return UpdateNotice::untrusted;
    case QNetworkReply::InsecureRedirectError:
    case QNetworkReply::TooManyRedirectsError:
    case QNetworkReply::ProtocolUnknownError:
        return UpdateNotice::insecure;
    case QNetworkReply::OperationCanceledError: // how the silence ends a transfer
    case QNetworkReply::TimeoutError:
    case QNetworkReply::ProxyTimeoutError:
        return UpdateNotice::timedOut;
    default:
        break;
    }
    const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    return status == 0 || status == statusOk ? UpdateNotice::unreachable
                                             : UpdateNotice::serverError;
}

} // namespace

UpdateTransfer::UpdateTransfer(const std::string& url, Limits limits, Sink sink, Ended ended)
    : limits_(limits), sink_(std::move(sink)), ended_(std::move(ended)),
      manager_(new QNetworkAccessManager), deadline_(std::make_unique<QTimer>()),
      connections_(std::make_unique<QObject>()) {
    reply_ = manager_->get(requestFor(url, limits.silence));
    reply_->setReadBufferSize(4 * chunkSize);
    QObject* context = connections_.get();
    QObject::connect(reply_, &QNetworkReply::metaDataChanged, context,
                     [this] { checkAnnouncedSize(); });
    QObject::connect(reply_, &QNetworkReply::readyRead, context, [this] { takeBytes(); });
    // Queued, because a request that cannot even be made is finished at once.
    QObject::connect(
        reply_, &QNetworkReply::finished, context, [this] { finish(); }, Qt::QueuedConnection);
    QObject::connect(deadline_.get(), &QTimer::timeout, context,
                     [this] { end(UpdateNotice::timedOut); });
    deadline_->setSingleShot(true);
    deadline_->start(limits.whole);
}

UpdateTransfer::~UpdateTransfer() {
    connections_.reset();
    reply_->abort();
    manager_->deleteLater();            // this may end inside its signals,
    deadline_.release()->deleteLater(); // or inside this one's
}

void UpdateTransfer::checkAnnouncedSize() {
    if (reply_->header(QNetworkRequest::ContentLengthHeader).toLongLong() > limits_.bytes) {
        end(UpdateNotice::oversized);
    }
}

void UpdateTransfer::takeBytes() {
    // The text of an error page is nobody's concern.
    if (reply_->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt() != statusOk) {
        return;
    }
    while (ended_ && reply_->bytesAvailable() > 0) {
        const QByteArray chunk = reply_->read(chunkSize);
        received_ += chunk.size();
        if (received_ > limits_.bytes) {
            end(UpdateNotice::oversized);
            return;
        }
        if (!sink_(std::string_view(chunk.data(), static_cast<std::size_t>(chunk.size())))) {
            end(UpdateNotice::storage);
            return;
        }
    }
}

void UpdateTransfer::finish() {
    const int status = reply_->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (reply_->error() != QNetworkReply::NoError || status != statusOk) {
        end(noticeFor(*reply_));
        return;
    }
    takeBytes();
    end(std::nullopt);
}

void UpdateTransfer::end(std::optional<UpdateNotice> failure) {
    if (const Ended ended = std::exchange(ended_, nullptr)) {
        ended(failure);
    }
}

} // namespace kelvora
