#include "export/mail_sender.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>

#include <curl/curl.h>

#include <memory>

namespace vessa {

namespace {

constexpr long kConnectSeconds = 20;
constexpr long kStalledSeconds = 60;

QString securityName(MailServer::Security security) {
    switch (security) {
    case MailServer::Security::None:
        return QStringLiteral("none");
    case MailServer::Security::Tls:
        return QStringLiteral("tls");
    case MailServer::Security::StartTls:
        break;
    }
    return QStringLiteral("starttls");
}

MailServer::Security securityOf(const QString& name) {
    if (name == QStringLiteral("none"))
        return MailServer::Security::None;
    if (name == QStringLiteral("tls"))
        return MailServer::Security::Tls;
    return MailServer::Security::StartTls;
}

MailServer readServer(const QString& file) {
    QSettings settings(file, QSettings::IniFormat);
    settings.beginGroup(QStringLiteral("MailServer"));
    MailServer server;
    server.host = settings.value(QStringLiteral("Host")).toString().trimmed();
    server.port = settings.value(QStringLiteral("Port"), server.port).toInt();
    server.security = securityOf(settings.value(QStringLiteral("Security")).toString());
    server.user = settings.value(QStringLiteral("User")).toString();
    server.password = settings.value(QStringLiteral("Password")).toString();
    const QString caFile = settings.value(QStringLiteral("CaFile")).toString().trimmed();
    if (!caFile.isEmpty())
        server.caFile = QFileInfo(file).dir().absoluteFilePath(caFile);
    return server;
}

// A header's text on one line, in UTF-8 words when it is not plain ASCII.
QByteArray headerText(QString text) {
    text.replace(QLatin1Char('\r'), QLatin1Char(' ')).replace(QLatin1Char('\n'), QLatin1Char(' '));
    const QByteArray utf8 = text.toUtf8();
    for (const char c : utf8)
        if (static_cast<unsigned char>(c) > 0x7e)
            return "=?UTF-8?B?" + utf8.toBase64() + "?=";
    return utf8;
}

QByteArray address(QString text) {
    text.remove(QLatin1Char('<')).remove(QLatin1Char('>'));
    text.remove(QLatin1Char('\r')).remove(QLatin1Char('\n'));
    return text.trimmed().toUtf8();
}

struct CurlDeleter {
    void operator()(CURL* curl) const { curl_easy_cleanup(curl); }
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
    void operator()(curl_mime* mime) const { curl_mime_free(mime); }
};

QString userMessageOf(CURLcode code, const char* details, const MailServer& server) {
    const QString where = server.host + QLatin1Char(':') + QString::number(server.port);
    const QString said = QString::fromUtf8(details).trimmed();
    switch (code) {
    case CURLE_COULDNT_RESOLVE_HOST:
        return QStringLiteral("The mail server %1 is not known. Check the mail settings.")
            .arg(server.host);
    case CURLE_COULDNT_CONNECT:
    case CURLE_OPERATION_TIMEDOUT:
        return QStringLiteral("The mail server %1 could not be reached. Check the mail settings "
                              "and that this computer is on the network.")
            .arg(where);
    case CURLE_LOGIN_DENIED:
        return QStringLiteral("The mail server %1 did not accept your user name and password.")
            .arg(where);
    case CURLE_USE_SSL_FAILED:
        return QStringLiteral("The mail server %1 offers no secure connection (STARTTLS), so "
                              "nothing was sent. Check the security in the mail settings.")
            .arg(where);
    case CURLE_PEER_FAILED_VERIFICATION:
        return QStringLiteral("The mail server %1 could not prove that it is the server you "
                              "named: this computer does not trust its certificate (%2). "
                              "Nothing was sent. If your teacher gave you a certificate file, "
                              "choose it in the mail settings.")
            .arg(where, said);
    case CURLE_SSL_CACERT_BADFILE:
        return QStringLiteral("The certificate file %1 can't be read. Check the mail settings.")
            .arg(QDir::toNativeSeparators(server.caFile));
    case CURLE_SSL_CONNECT_ERROR:
        return QStringLiteral("A secure connection to the mail server %1 could not be made (%2). "
                              "Check the security in the mail settings.")
            .arg(where, said);
    case CURLE_ABORTED_BY_CALLBACK:
        return QStringLiteral("Sending was stopped.");
    default:
        break;
    }
    return QStringLiteral("The mail server %1 refused the mail: %2")
        .arg(where, said.isEmpty() ? QString::fromUtf8(curl_easy_strerror(code)) : said);
}

int keepGoingCallback(void* state, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
    const auto* keepGoing = static_cast<const std::function<bool()>*>(state);
    return (*keepGoing)() ? 0 : 1;
}

} // namespace

MailServer loadMailServer(const QString& userFile, const QString& presetFile) {
    const MailServer own = readServer(userFile);
    return own.complete() ? own : readServer(presetFile);
}

bool saveMailServer(const MailServer& server, const QString& userFile) {
    QSettings settings(userFile, QSettings::IniFormat);
    settings.beginGroup(QStringLiteral("MailServer"));
    settings.setValue(QStringLiteral("Host"), server.host);
    settings.setValue(QStringLiteral("Port"), server.port);
    settings.setValue(QStringLiteral("Security"), securityName(server.security));
    settings.setValue(QStringLiteral("User"), server.user);
    settings.setValue(QStringLiteral("Password"), server.password);
    settings.setValue(QStringLiteral("CaFile"), server.caFile);
    settings.endGroup();
    settings.sync();
    return settings.status() == QSettings::NoError;
}

OutgoingMail mailOfCommandLine(const QStringList& arguments, QString* why) {
    OutgoingMail mail;
    if (arguments.size() < 6) {
        *why = QStringLiteral("VessaClient SENDER-NAME SENDER-ADDRESS MESSAGE TITLE ARCHIVE "
                              "ADDRESS...");
        return mail;
    }
    mail.senderName = arguments[0];
    mail.senderAddress = arguments[1];
    mail.text = arguments[2];
    mail.title = arguments[3];
    const QString archive = arguments[4];
    mail.attachments << archive;
    const QFileInfo info(archive);
    const QString page =
        info.path() + QLatin1Char('/') + info.completeBaseName() + QStringLiteral(".html");
    if (QFileInfo(page).isFile())
        mail.attachments << page;
    for (const QString& receiver : arguments.mid(5))
        if (!receiver.trimmed().isEmpty())
            mail.receivers << receiver.trimmed();
    return mail;
}

MailOutcome sendMail(const MailServer& server, const OutgoingMail& mail,
                     const std::function<bool()>& keepGoing) {
    std::unique_ptr<CURL, CurlDeleter> curl(curl_easy_init());
    if (!curl)
        return {false, QStringLiteral("The mail could not be prepared.")};
    const QByteArray scheme = server.security == MailServer::Security::Tls ? "smtps://" : "smtp://";
    const QByteArray url = scheme + server.host.toUtf8() + ':' + QByteArray::number(server.port);
    curl_easy_setopt(curl.get(), CURLOPT_URL, url.constData());
    curl_easy_setopt(curl.get(), CURLOPT_USE_SSL,
                     server.security == MailServer::Security::None ? long(CURLUSESSL_NONE)
                                                                   : long(CURLUSESSL_ALL));
    // The server's certificate is always checked; a school's own authority is trusted
    // through a file the teacher hands out, never by checking less.
    const QByteArray caFile = QFile::encodeName(server.caFile);
    if (!caFile.isEmpty())
        curl_easy_setopt(curl.get(), CURLOPT_CAINFO, caFile.constData());
    const QByteArray user = server.user.toUtf8();
    const QByteArray password = server.password.toUtf8();
    if (!user.isEmpty()) {
        curl_easy_setopt(curl.get(), CURLOPT_USERNAME, user.constData());
        curl_easy_setopt(curl.get(), CURLOPT_PASSWORD, password.constData());
    }
    const QByteArray from = '<' + address(mail.senderAddress) + '>';
    curl_easy_setopt(curl.get(), CURLOPT_MAIL_FROM, from.constData());
    std::unique_ptr<curl_slist, CurlDeleter> receivers;
    QByteArrayList to;
    for (const QString& receiver : mail.receivers) {
        to << address(receiver);
        receivers.reset(
            curl_slist_append(receivers.release(), ('<' + address(receiver) + '>').constData()));
    }
    curl_easy_setopt(curl.get(), CURLOPT_MAIL_RCPT, receivers.get());

    std::unique_ptr<curl_slist, CurlDeleter> headers;
    const QByteArrayList lines = {
        "Date: " + QDateTime::currentDateTimeUtc().toString(Qt::RFC2822Date).toUtf8(),
        "From: " + headerText(mail.senderName) + " <" + address(mail.senderAddress) + '>',
        "To: " + to.join(", "),
        "Subject: " + headerText(QStringLiteral("A Vessa47 world for you: ") + mail.title),
    };
    for (const QByteArray& line : lines)
        headers.reset(curl_slist_append(headers.release(), line.constData()));
    curl_easy_setopt(curl.get(), CURLOPT_HTTPHEADER, headers.get());

    std::unique_ptr<curl_mime, CurlDeleter> mime(curl_mime_init(curl.get()));
    const QByteArray text =
        (mail.text + QStringLiteral("\r\n\r\n%1 sent you the Vessa47 world \"%2\". To open it, "
                                    "choose Import VES File... in the File menu of Vessa47 and "
                                    "pick the attached archive.\r\n")
                         .arg(mail.senderName, mail.title))
            .toUtf8();
    curl_mimepart* body = curl_mime_addpart(mime.get());
    curl_mime_data(body, text.constData(), size_t(text.size()));
    curl_mime_type(body, "text/plain; charset=utf-8");
    curl_mime_encoder(body, "base64");
    for (const QString& file : mail.attachments) {
        curl_mimepart* part = curl_mime_addpart(mime.get());
        if (curl_mime_filedata(part, QFile::encodeName(file).constData()) != CURLE_OK)
            return {false, file + QStringLiteral(" can't be read.")};
        curl_mime_filename(part, QFileInfo(file).fileName().toUtf8().constData());
        curl_mime_type(part, file.endsWith(QStringLiteral(".html"), Qt::CaseInsensitive)
                                 ? "text/html"
                                 : "application/octet-stream");
        curl_mime_encoder(part, "base64");
    }
    curl_easy_setopt(curl.get(), CURLOPT_MIMEPOST, mime.get());
    curl_easy_setopt(curl.get(), CURLOPT_CONNECTTIMEOUT, kConnectSeconds);
    curl_easy_setopt(curl.get(), CURLOPT_LOW_SPEED_LIMIT, 1L);
    curl_easy_setopt(curl.get(), CURLOPT_LOW_SPEED_TIME, kStalledSeconds);
    curl_easy_setopt(curl.get(), CURLOPT_NOSIGNAL, 1L);
    if (keepGoing) {
        curl_easy_setopt(curl.get(), CURLOPT_NOPROGRESS, 0L);
        curl_easy_setopt(curl.get(), CURLOPT_XFERINFOFUNCTION, keepGoingCallback);
        curl_easy_setopt(curl.get(), CURLOPT_XFERINFODATA, &keepGoing);
    }
    char details[CURL_ERROR_SIZE] = {};
    curl_easy_setopt(curl.get(), CURLOPT_ERRORBUFFER, details);
    const CURLcode code = curl_easy_perform(curl.get());
    if (code != CURLE_OK)
        return {false, userMessageOf(code, details, server)};
    return {true, QStringLiteral("Your world \"%1\" was sent to %2.")
                      .arg(mail.title, mail.receivers.join(QStringLiteral(", ")))};
}

} // namespace vessa
