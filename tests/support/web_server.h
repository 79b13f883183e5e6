#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QProcess>
#include <QString>
#include <QStringList>

namespace vessa::testing {

// A static web server (Python's) over a folder on the loopback address, on a free
// port, for as long as it lives: what an exported page is opened through.
class WebServer {
public:
    explicit WebServer(const QString& folder);
    ~WebServer();
    QString url(const QString& path) const;
    bool serving() const { return !port_.isEmpty(); }

private:
    QProcess server_;
    QString port_;
};

// What the browser script (tests/export/web/browse.mjs, in headless Chromium) found
// doing `action` with a page, empty when it printed nothing readable, and what it said
// on its error output; a browser still at work after waitMs is ended.
struct Browsed {
    QJsonObject seen;
    QByteArray errors;
};
Browsed browsePage(const QStringList& action, int waitMs);

} // namespace vessa::testing
