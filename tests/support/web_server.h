#pragma once

#include <QProcess>
#include <QString>

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

} // namespace vessa::testing
