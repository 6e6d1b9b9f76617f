#include "repository/RepositoryStore.h"

#include <QSqlError>
#include <QSqlQuery>

// The repository's tables and their versions. Version 1:
//   schema_version  one row: the version of the tables below
//   catalogs        ref (key), display_name
//   items           one row per record: (catalog_ref, id) as key, parent_id ('' at the top,
//                   no foreign key: a record may arrive before its parent), name, is_group,
//                   ord, content (the item's own XML), revision, changed_at (UTC, ISO 8601),
//                   changed_by; indexed for the children of a parent.
// A later version adds its step to migrationSteps(); a database is brought up to date in
// one transaction, and one newer than this program is refused and left alone.

namespace Repository
{

namespace
{

// Step n brings the tables from version n - 1 to n (version 0: nothing there).
const QList<QStringList>& migrationSteps()
{
    static const QList<QStringList> steps = {
        {
            QStringLiteral("CREATE TABLE schema_version (version INTEGER NOT NULL)"),
            QStringLiteral(
                "CREATE TABLE catalogs (ref TEXT PRIMARY KEY, display_name TEXT NOT NULL)"),
            QStringLiteral("CREATE TABLE items ("
                           "catalog_ref TEXT NOT NULL REFERENCES catalogs (ref), "
                           "id TEXT NOT NULL, "
                           "parent_id TEXT NOT NULL, "
                           "name TEXT NOT NULL, "
                           "is_group INTEGER NOT NULL, "
                           "ord INTEGER NOT NULL, "
                           "content TEXT NOT NULL, "
                           "revision INTEGER NOT NULL, "
                           "changed_at TEXT NOT NULL, "
                           "changed_by TEXT NOT NULL, "
                           "PRIMARY KEY (catalog_ref, id))"),
            QStringLiteral("CREATE INDEX items_children ON items (catalog_ref, parent_id, ord)"),
        },
    };
    static_assert(RepositoryStore::SchemaVersion == 1, "add the migration step of the new version");
    return steps;
}

} // namespace

int RepositoryStore::readSchemaVersion(QString& why)
{
    // Asking the catalog first: a failed SELECT would abort a PostgreSQL transaction.
    if (!m_db.tables().contains(QStringLiteral("schema_version"), Qt::CaseInsensitive))
        return 0;
    QSqlQuery query(m_db);
    ++m_statementsRun;
    if (!query.exec(QStringLiteral("SELECT MAX(version) FROM schema_version")))
    {
        noteFailure(query.lastError());
        why = QStringLiteral("reading the schema version: %1").arg(m_failureText);
        return -1;
    }
    return query.next() ? query.value(0).toInt() : 0;
}

bool RepositoryStore::migrate(int from, QString& why)
{
    const QString creating =
        from == 0 ? QStringLiteral("creating the repository's tables")
                  : QStringLiteral("updating the repository's tables from version %1").arg(from);
    const auto fail = [&]
    {
        why = QStringLiteral("%1: %2").arg(creating, m_failureText);
        rollback();
        return false;
    };
    if (!begin())
        return fail();
    // Two programs meeting an empty database at once: the second waits here, then finds
    // the tables made.
    if (isPostgres() && !execAll({QStringLiteral("SELECT pg_advisory_xact_lock(7310001)")}))
        return fail();
    const int now = readSchemaVersion(why);
    if (now < 0)
        return fail();
    if (now >= SchemaVersion)
    {
        rollback();
        return true;
    }
    for (int version = now + 1; version <= SchemaVersion; ++version)
        if (!execAll(migrationSteps().at(version - 1)))
            return fail();
    QSqlQuery setVersion(m_db);
    setVersion.prepare(QStringLiteral("INSERT INTO schema_version (version) VALUES (?)"));
    setVersion.addBindValue(SchemaVersion);
    if (!execAll({QStringLiteral("DELETE FROM schema_version")}) || !setVersion.exec())
    {
        if (setVersion.lastError().isValid())
            noteFailure(setVersion.lastError());
        return fail();
    }
    if (!commit())
        return fail();
    return true;
}

bool RepositoryStore::ensureSchema(QString& why)
{
    const int version = readSchemaVersion(why);
    if (version < 0)
        return false;
    if (version > SchemaVersion)
    {
        m_failure = FailureKind::Other;
        why = QStringLiteral(
                  "the repository's schema version %1 is newer than this program knows (%2); "
                  "it is left as it is")
                  .arg(version)
                  .arg(SchemaVersion);
        return false;
    }
    // Nothing is written when the tables are current: a read-only user gets this far.
    return version == SchemaVersion || migrate(version, why);
}

} // namespace Repository
