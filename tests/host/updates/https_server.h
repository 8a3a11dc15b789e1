// SPDX-License-Identifier: MIT
#pragma once

#include <QSslConfiguration>
#include <QSslServer>
#include <QString>
#include <QTcpSocket>

#include <functional>
#include <map>
#include <string>

namespace kelvora::test {

/// A certificate for 127.0.0.1 that vouches for itself, with its key.
[[nodiscard]] QSslConfiguration makeIdentity(const QString& directory);

/// A web server on the loopback, served by the test's own event loop.
class HttpsServer {
public:
    using Handler = std::function<void(QTcpSocket& client)>;

    explicit HttpsServer(const QSslConfiguration& identity);

    [[nodiscard]] std::string url(const std::string& path) const;
    void on(const std::string& path, Handler handler) { handlers_[path] = std::move(handler); }
    void serve(const std::string& path, const std::string& body);
    void redirect(const std::string& path, const std::string& url);
    [[nodiscard]] int requests() const { return requests_; }
    [[nodiscard]] const std::string& lastRequest() const { return lastRequest_; }

    static void send(QTcpSocket& client, const std::string& bytes);
    [[nodiscard]] static std::string headOf(std::size_t bodySize);

private:
    void accept();
    void answer(QTcpSocket& client);

    QSslServer server_;
    std::map<std::string, Handler> handlers_;
    int requests_ = 0;
    std::string lastRequest_;
};

} // namespace kelvora::test
