#include "support/web_server.h"

#include <QRegularExpression>

namespace vessa::testing {

WebServer::WebServer(const QString& folder) {
    server_.setProcessChannelMode(QProcess::MergedChannels);
    server_.start(QStringLiteral("/usr/bin/python3"),
                  {QStringLiteral("-u"), QStringLiteral("-m"), QStringLiteral("http.server"),
                   QStringLiteral("0"), QStringLiteral("--bind"), QStringLiteral("127.0.0.1"),
                   QStringLiteral("--directory"), folder});
    static const QRegularExpression port(QStringLiteral(R"(port (\d+))"));
    QString said;
    while (port_.isEmpty() && server_.waitForReadyRead(30000)) {
        said += QString::fromUtf8(server_.readAll());
        port_ = port.match(said).captured(1);
    }
}

WebServer::~WebServer() {
    server_.kill();
    server_.waitForFinished();
}

QString WebServer::url(const QString& path) const {
    return QStringLiteral("http://127.0.0.1:%1/%2").arg(port_, path);
}

} // namespace vessa::testing
