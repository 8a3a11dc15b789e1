// SPDX-License-Identifier: MIT
#include "tests/host/updates/https_server.h"

#include <QFile>
#include <QProcess>
#include <QSslCertificate>
#include <QSslKey>

#include <stdexcept>

namespace kelvora::test {

QSslConfiguration makeIdentity(const QString& directory) {
    const QString keyFile = directory + "/server.key";
    const QString certificateFile = directory + "/server.pem";
    QProcess openssl;
    openssl.start("openssl",
                  {"req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256", "-nodes",
                   "-subj", "/CN=127.0.0.1", "-addext", "subjectAltName=IP:127.0.0.1", "-keyout",
                   keyFile, "-out", certificateFile});
    openssl.waitForFinished();
    QFile key(keyFile);
    if (openssl.exitCode() != 0 || !key.open(QIODevice::ReadOnly))
        throw std::runtime_error("openssl makes no certificate");
    QSslConfiguration identity;
    identity.setPrivateKey(QSslKey(&key, QSsl::Ec));
    identity.setLocalCertificate(QSslCertificate::fromPath(certificateFile).value(0));
    return identity;
}

HttpsServer::HttpsServer(const QSslConfiguration& identity) {
    server_.setSslConfiguration(identity);
    if (!server_.listen(QHostAddress::LocalHost))
        throw std::runtime_error("the server does not listen");
    QObject::connect(&server_, &QTcpServer::pendingConnectionAvailable, &server_,
                     [this] { accept(); });
}

std::string HttpsServer::url(const std::string& path) const {
    return "https://127.0.0.1:" + std::to_string(server_.serverPort()) + path;
}

void HttpsServer::serve(const std::string& path, const std::string& body) {
    on(path, [body](QTcpSocket& client) {
        send(client, headOf(body.size()) + body);
        client.disconnectFromHost();
    });
}

void HttpsServer::redirect(const std::string& path, const std::string& url) {
    on(path, [url](QTcpSocket& client) {
        send(client, "HTTP/1.1 302 Found\r\nContent-Length: 0\r\nLocation: " + url + "\r\n\r\n");
        client.disconnectFromHost();
    });
}

void HttpsServer::send(QTcpSocket& client, const std::string& bytes) {
    client.write(bytes.data(), static_cast<qint64>(bytes.size()));
    client.flush();
}

std::string HttpsServer::headOf(std::size_t bodySize) {
    return "HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: " + std::to_string(bodySize) +
           "\r\n\r\n";
}

void HttpsServer::accept() {
    while (QTcpSocket* client = server_.nextPendingConnection()) {
        QObject::connect(client, &QTcpSocket::readyRead, client, [this, client] {
            if (client->peek(64 * 1024).contains("\r\n\r\n"))
                answer(*client);
        });
        QObject::connect(client, &QTcpSocket::disconnected, client, &QObject::deleteLater);
    }
}

void HttpsServer::answer(QTcpSocket& client) {
    ++requests_;
    lastRequest_ = client.readAll().toStdString();
    const std::size_t begin = lastRequest_.find(' ') + 1;
    const std::string path = lastRequest_.substr(begin, lastRequest_.find(' ', begin) - begin);
    if (const auto found = handlers_.find(path); found != handlers_.end()) {
        found->second(client);
        return;
    }
    // Longer than anything that is wanted: an error stays one whatever its page weighs.
    send(client, "HTTP/1.1 404 Not Found\r\nConnection: close\r\n\r\n" + std::string(200'000, 'x'));
    client.disconnectFromHost();
}

} // namespace kelvora::test
