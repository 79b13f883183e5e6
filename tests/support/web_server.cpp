#include "support/web_server.h"

#include <QJsonDocument>
#include <QProcessEnvironment>
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

Browsed browsePage(const QStringList& action, int waitMs) {
    QProcess node;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("VESSA_WEB_MODULES"), QStringLiteral(VESSA_WEB_MODULES));
    node.setProcessEnvironment(env);
    node.start(QStringLiteral("node"),
               QStringList{QStringLiteral(VESSA_SOURCE_DIR "/tests/export/web/browse.mjs")} +
                   action);
    if (!node.waitForFinished(waitMs))
        node.kill();
    node.waitForFinished();
    return {QJsonDocument::fromJson(node.readAllStandardOutput()).object(),
            node.readAllStandardError()};
}

} // namespace vessa::testing
