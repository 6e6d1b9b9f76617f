#pragma once

#include <QString>

namespace Repository
{

// A repository URL taken apart: "none", "sqlite:PATH" or
// "postgresql://[user[:password]@]host[:port]/dbname[?key=value&...]" (also "postgres://").
struct RepositoryUrl
{
    enum class Kind
    {
        None,
        Sqlite,
        Postgres
    };

    Kind kind = Kind::None;
    QString path; // SQLite file
    QString user;
    QString password; // empty: libpq's password file or other methods decide
    QString host;     // a name, an address or a Unix-socket folder (starts with '/')
    int port = -1;
    QString database;
    QString sslmode;
    int connectTimeout = -1; // seconds
};

// False, with the reason (never holding the password), when `text` is not a URL of the
// forms above. Percent-encoding is decoded in user, password, host, database and the
// query's values, so a socket folder may be written as "%2Ftmp%2Fpg".
bool ParseRepositoryUrl(const QString& text, RepositoryUrl& url, QString& why);

// `text` with any password taken out (the user-info's and a "password=" parameter's), for
// messages and logs. Works on text that does not parse, too.
QString UrlWithoutPassword(const QString& text);

// The SQLite file used when nothing is configured: repository.sqlite in the user's data
// folder, beside the catalog store.
QString DefaultRepositoryPath();

} // namespace Repository
