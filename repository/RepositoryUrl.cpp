#include "repository/RepositoryUrl.h"

#include <QStandardPaths>
#include <QStringList>
#include <QUrl>

namespace Repository
{

namespace
{

QString decoded(QStringView text)
{
    return QUrl::fromPercentEncoding(text.toUtf8());
}

bool toNumber(const QString& text, int low, int high, int& value)
{
    bool ok = false;
    const int number = text.toInt(&ok);
    if (!ok || number < low || number > high)
        return false;
    value = number;
    return true;
}

// "host", "host:port", "[v6]", "[v6]:port", "%2Fsocket%2Ffolder", "%2Fsocket:port".
bool parseHostPort(QStringView text, RepositoryUrl& url, QString& why)
{
    QStringView host = text;
    QStringView port;
    if (text.startsWith(u'['))
    {
        const qsizetype close = text.indexOf(u']');
        if (close < 0)
        {
            why = QStringLiteral("the host's '[' is not closed");
            return false;
        }
        host = text.mid(1, close - 1);
        const QStringView rest = text.mid(close + 1);
        if (!rest.isEmpty())
        {
            if (!rest.startsWith(u':'))
            {
                why = QStringLiteral("unexpected text after the host's ']'");
                return false;
            }
            port = rest.mid(1);
        }
    }
    else if (const qsizetype colon = text.lastIndexOf(u':'); colon >= 0)
    {
        host = text.left(colon);
        port = text.mid(colon + 1);
    }
    url.host = decoded(host);
    if (!port.isEmpty() && !toNumber(port.toString(), 1, 65535, url.port))
    {
        why = QStringLiteral("port \"%1\" is not a number from 1 to 65535").arg(port);
        return false;
    }
    return true;
}

bool applyParameter(const QString& key, const QString& value, RepositoryUrl& url, QString& why)
{
    static const QStringList sslModes = {
        QStringLiteral("disable"), QStringLiteral("allow"),     QStringLiteral("prefer"),
        QStringLiteral("require"), QStringLiteral("verify-ca"), QStringLiteral("verify-full")};
    if (key == u"host")
    {
        url.host = value;
    }
    else if (key == u"port")
    {
        if (!toNumber(value, 1, 65535, url.port))
        {
            why = QStringLiteral("port \"%1\" is not a number from 1 to 65535").arg(value);
            return false;
        }
    }
    else if (key == u"user")
    {
        url.user = value;
    }
    else if (key == u"password")
    {
        url.password = value;
    }
    else if (key == u"dbname")
    {
        url.database = value;
    }
    else if (key == u"sslmode")
    {
        // Only known words: the value goes into libpq's connection string.
        if (!sslModes.contains(value))
        {
            why =
                QStringLiteral("sslmode \"%1\" is not one of %2").arg(value, sslModes.join(u", "));
            return false;
        }
        url.sslmode = value;
    }
    else if (key == u"connect_timeout")
    {
        if (!toNumber(value, 0, 86400, url.connectTimeout))
        {
            why = QStringLiteral("connect_timeout \"%1\" is not a number of seconds").arg(value);
            return false;
        }
    }
    else
    {
        why = QStringLiteral("unknown parameter \"%1\"").arg(key);
        return false;
    }
    return true;
}

bool parsePostgres(QStringView rest, RepositoryUrl& url, QString& why)
{
    url.kind = RepositoryUrl::Kind::Postgres;
    QStringView query;
    if (const qsizetype mark = rest.indexOf(u'?'); mark >= 0)
    {
        query = rest.mid(mark + 1);
        rest = rest.left(mark);
    }
    const qsizetype slash = rest.indexOf(u'/');
    const QStringView authority = slash < 0 ? rest : rest.left(slash);
    url.database = slash < 0 ? QString() : decoded(rest.mid(slash + 1));
    QStringView hostPort = authority;
    if (const qsizetype at = authority.lastIndexOf(u'@'); at >= 0)
    {
        const QStringView userInfo = authority.left(at);
        hostPort = authority.mid(at + 1);
        const qsizetype colon = userInfo.indexOf(u':');
        url.user = decoded(colon < 0 ? userInfo : userInfo.left(colon));
        if (colon >= 0)
            url.password = decoded(userInfo.mid(colon + 1));
    }
    if (!hostPort.isEmpty() && !parseHostPort(hostPort, url, why))
        return false;
    if (!query.isEmpty())
    {
        for (QStringView pair : query.split(u'&', Qt::SkipEmptyParts))
        {
            const qsizetype equals = pair.indexOf(u'=');
            if (equals <= 0)
            {
                // The text itself stays out of the message: it may be a password.
                why = equals < 0
                          ? QStringLiteral("parameter \"%1\" has no value").arg(decoded(pair))
                          : QStringLiteral("a parameter without a name");
                return false;
            }
            if (!applyParameter(decoded(pair.left(equals)), decoded(pair.mid(equals + 1)), url,
                                why))
                return false;
        }
    }
    if (url.database.isEmpty())
    {
        why = QStringLiteral("no database name (postgresql://[user@]host[:port]/dbname)");
        return false;
    }
    return true;
}

} // namespace

bool ParseRepositoryUrl(const QString& text, RepositoryUrl& url, QString& why)
{
    url = RepositoryUrl();
    why.clear();
    const QString trimmed = text.trimmed();
    if (trimmed.compare(u"none", Qt::CaseInsensitive) == 0)
        return true;
    const qsizetype colon = trimmed.indexOf(u':');
    const QString scheme = colon < 0 ? QString() : trimmed.left(colon).toLower();
    if (scheme == u"sqlite")
    {
        QString path = trimmed.mid(colon + 1);
        if (path.startsWith(u"//"))
            path = path.mid(2); // sqlite:///abs/file
        if (path.isEmpty())
        {
            why = QStringLiteral("no file name after \"sqlite:\"");
            return false;
        }
        url.kind = RepositoryUrl::Kind::Sqlite;
        url.path = path;
        return true;
    }
    if ((scheme == u"postgresql" || scheme == u"postgres") &&
        trimmed.mid(colon + 1).startsWith(u"//"))
        return parsePostgres(QStringView(trimmed).mid(colon + 3), url, why);
    if (trimmed.isEmpty())
        why = QStringLiteral("the URL is empty (expected sqlite:PATH, postgresql://... or none)");
    else if (colon < 0)
        why = QStringLiteral("no scheme (expected sqlite:PATH, postgresql://... or none)");
    else
        why =
            QStringLiteral("unknown scheme \"%1\" (expected sqlite:PATH, postgresql://... or none)")
                .arg(trimmed.left(colon));
    return false;
}

QString UrlWithoutPassword(const QString& text)
{
    QString result = text.trimmed();
    const qsizetype schemeEnd = result.indexOf(u"://");
    if (schemeEnd >= 0)
    {
        const qsizetype authorityStart = schemeEnd + 3;
        qsizetype authorityEnd = result.indexOf(u'/', authorityStart);
        const qsizetype queryStart = result.indexOf(u'?', authorityStart);
        if (authorityEnd < 0 || (queryStart >= 0 && queryStart < authorityEnd))
            authorityEnd = queryStart < 0 ? result.size() : queryStart;
        const qsizetype at = result.lastIndexOf(u'@', authorityEnd - 1);
        if (at >= authorityStart)
        {
            const qsizetype colon = result.indexOf(u':', authorityStart);
            if (colon >= 0 && colon < at)
                result.remove(colon, at - colon);
        }
    }
    // A password given as a parameter: drop the whole pair.
    const qsizetype query = result.indexOf(u'?');
    if (query >= 0)
    {
        QStringList pairs = result.mid(query + 1).split(u'&');
        pairs.removeIf(
            [](const QString& pair)
            {
                return decoded(pair.section(u'=', 0, 0))
                           .trimmed()
                           .compare(u"password", Qt::CaseInsensitive) == 0;
            });
        result = result.left(query);
        if (!pairs.isEmpty())
            result += u'?' + pairs.join(u'&');
    }
    return result;
}

QString DefaultRepositoryPath()
{
    // The generic data folder, as the catalog store and the log use, so every program of
    // the module finds the same file.
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
           QStringLiteral("/zevxcatalogeditor/repository.sqlite");
}

} // namespace Repository
