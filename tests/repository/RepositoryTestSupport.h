#pragma once

// The back ends the repository tests run on, and items to send. Every test row names a
// back end; the PostgreSQL rows are skipped, saying why, when no server can be made here.

#include "catalog/CatalogItem.h"
#include "repository/RepositoryStorageManager.h"
#include "tests/support/PostgresServer.h"

#include <QString>
#include <QTemporaryDir>
#include <boost/shared_ptr.hpp>
#include <functional>
#include <vector>

namespace RepositoryTest
{

using Item = boost::shared_ptr<ZEVGis::Data::CCatalogItem>;
using Records = std::vector<boost::shared_ptr<Repository::CNetCatalogueItem>>;

// One PostgreSQL server for the whole test program, started on first use.
PostgresServer* sharedServer(QString& why);
// Stops it; from cleanupTestCase, while the application object still lives.
void stopSharedServer();

// A fresh, empty repository of the back end ("sqlite" or "postgresql"): a new file, or a
// new database owned by the read-write role. Empty, with `why`, when it cannot be made.
QString freshRepository(const QString& backend, QTemporaryDir& folder, QString& why,
                        QString* database = nullptr);

// Where sql() reaches a row's repository `url`: its SQLite file in `folder` (as
// freshRepository makes it), or its PostgreSQL database.
QString sqlTarget(const QString& backend, const QTemporaryDir& folder, const QString& url);
// Runs one statement on the row's database, beside the client, as the superuser on
// PostgreSQL: the first column of the first row, "<failed...>" when it failed.
QString sql(const QString& backend, const QString& target, const QString& statement);

// Adds the column "backend" with one row per back end, named after it.
void addBackendRows();
// The same column with the PostgreSQL row alone, for what only a server can show.
void addPostgresRow();

// An item (a group when `group`) with the GUID "{name}" hung under `parent`.
Item makeItem(const QString& name, bool group, const Item& parent = {}, int ord = 0);
// An item carrying every kind of property and every optional field.
Item makeFullItem(const QString& name);
// Empty when `actual` carries everything `expected` does; else the first difference.
QString differences(ZEVGis::Data::CCatalogItem& expected, ZEVGis::Data::CCatalogItem& actual);

// The repository's tree of a catalog as "name" lines indented by depth, children in the
// order GetChildCatalogItems gives them.
QStringList tree(const QString& catalogReference);
QStringList names(const Records& records);

} // namespace RepositoryTest

// Configures the client on a fresh repository of the row's back end, or skips the row.
#define REPOSITORY_SETUP(folder)                                                                   \
    QFETCH(QString, backend);                                                                      \
    QTemporaryDir folder;                                                                          \
    QString setupWhy;                                                                              \
    const QString url = RepositoryTest::freshRepository(backend, folder, setupWhy);                \
    if (url.isEmpty())                                                                             \
    {                                                                                              \
        if (backend == QLatin1String("postgresql"))                                                \
            QSKIP(qPrintable(setupWhy));                                                           \
        QFAIL(qPrintable(setupWhy));                                                               \
    }                                                                                              \
    auto* repository = Repository::CRepositoryStorageManager::Instance();                          \
    QVERIFY2(repository->Configure(url), qPrintable(repository->LastError()))
