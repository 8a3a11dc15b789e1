// SPDX-License-Identifier: MIT
#pragma once

#include <QFile>
#include <QProcess>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>
#include <QTcpSocket>

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>

namespace kelvora::test {

/// A certificate for 127.0.0.1 that vouches for itself, with its key.
[[nodiscard]] inline QSslConfiguration makeIdentity(const QString& directory) {
    const QString keyFile = directory + "/server.key";
    const QString certificateFile = directory + "/server.pem";
    QProcess openssl;
    openssl.start("openssl",
                  {"req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256", "-nodes",
                   "-subj", "/CN=127.0.0.1", "-addext", "subjectAltName=IP:127.0.0.1", "-keyout",
                   keyFile, "-out", certificateFile});
    EXPECT_TRUE(openssl.waitForFinished());
    QFile key(keyFile);
    EXPECT_TRUE(key.open(QIODevice::ReadOnly));
    QSslConfiguration identity;
    identity.setPrivateKey(QSslKey(&key, QSsl::Ec));
    identity.setLocalCertificate(QSslCertificate::fromPath(certificateFile).value(0));
    return identity;
}

/// A web server on the loopback, served by the test's own event loop.
class HttpsServer {
public:
    using Handler = std::function<void(QTcpSocket& client)>;

    explicit HttpsServer(const QSslConfiguration& identity) {
        server_.setSslConfiguration(identity);
        EXPECT_TRUE(server_.listen(QHostAddress::LocalHost));
        QObject::connect(&server_, &QTcpServer::pendingConnectionAvailable, &server_, [this] {
            while (QTcpSocket* client = server_.nextPendingConnection())
                QObject::connect(client, &QTcpSocket::readyRead, client, [this, client] {
                    if (client->peek(64 * 1024).contains("\r\n\r\n"))
                        answer(*client);
                });
        });
    }

    [[nodiscard]] std::string url(const std::string& path) const {
        return "https://127.0.0.1:" + std::to_string(server_.serverPort()) + path;
    }
    void on(const std::string& path, Handler handler) { handlers_[path] = std::move(handler); }
    /// A whole answer, or its beginning.
    void on(const std::string& path, const std::string& answer) {
        on(path, [answer](QTcpSocket& client) {
            send(client, answer);
            client.disconnectFromHost();
        });
    }
    void serve(const std::string& path, const std::string& body) {
        on(path, headOf(body.size()) + body);
    }
    void redirect(const std::string& path, const std::string& url) {
        on(path, "HTTP/1.1 302 Found\r\nContent-Length: 0\r\nLocation: " + url + "\r\n\r\n");
    }
    [[nodiscard]] const std::string& lastRequest() const { return lastRequest_; }

    static void send(QTcpSocket& client, const std::string& bytes) {
        client.write(bytes.data(), static_cast<qint64>(bytes.size()));
        client.flush();
    }
    [[nodiscard]] static std::string headOf(std::size_t bodySize) {
        return "HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: " +
               std::to_string(bodySize) + "\r\n\r\n";
    }

private:
    void answer(QTcpSocket& client) {
        lastRequest_ = client.readAll().toStdString();
        const std::size_t begin = lastRequest_.find(' ') + 1;
        const std::string path = lastRequest_.substr(begin, lastRequest_.find(' ', begin) - begin);
        EXPECT_TRUE(handlers_.contains(path)) << path;
        handlers_[path](client);
    }

    QSslServer server_;
    std::map<std::string, Handler> handlers_;
    std::string lastRequest_;
};

} // namespace kelvora::test
