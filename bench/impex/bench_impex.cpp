// The import/export dialog, offscreen, as a user drives it:
//   BM_OpenDialog       opening it on a catalog of 100,000 entries, left tree filled and shown
//   BM_ExportGroup      "->" on a group of 10,000 items in file mode, then OK writing the file
//   BM_ImportGroup      browsing to that file, then "<-" on the group into an empty catalog
//   BM_SendGroup        "->" on the group in repository mode, the right tree reloaded after
//                       (argument 0: SQLite, 1: the benchmark's own PostgreSQL, 2: the same
//                       with commits synced to the disk, as a real server does);
//                       round_trips_per_item: statements the server ran per item sent
//   BM_FillFromRepository  the right tree filled from a repository of 10,000 records
#include "bench/catalog/CatalogGenerator.h"
#include "impex/DlgCatalogImpex.h"
#include "impex/ImpexIds.h"
#include "impex/ImpexRepository.h"
#include "host/ScriptedHost.h"
#include "repository/RepositoryStorageManager.h"
#include "tests/editor/EditorTestStore.h"
#include "tests/support/FindControl.h"
#include "tests/support/PostgresServer.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFileInfo>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTreeWidgetItemIterator>
#include <benchmark/benchmark.h>

using namespace ZEVGis;
using namespace ZEVGis::Data;
using Repository::CRepositoryStorageManager;
namespace Ids = ZEVGis::Impex::Ids;

namespace
{

constexpr int GroupItems = 10000;
Host::ScriptedHost g_host;
std::unique_ptr<PostgresServer> g_server;
std::unique_ptr<PostgresServer> g_syncingServer;
std::unique_ptr<EditorTestStore> g_store;

QTemporaryDir& tempDir()
{
    static QTemporaryDir dir;
    return dir;
}

// "BENCH" with the group "Big" (ord 0) of 10,000 items, each with 10 properties.
boost::shared_ptr<CCatalog> groupCatalog()
{
    auto catalog = boost::make_shared<CCatalog>();
    catalog->SetReference(QStringLiteral("BENCH"));
    auto group = boost::make_shared<CCatalogItem>();
    group->SetGUID(ZevxBench::benchGuid(0));
    group->SetName(QStringLiteral("Big"));
    group->SetIsGroup(1);
    catalog->AddItem(group);
    for (int n = 1; n <= GroupItems; ++n)
    {
        auto item = boost::make_shared<CCatalogItem>();
        item->SetGUID(ZevxBench::benchGuid(n));
        item->SetName(QStringLiteral("NA2XS(F)2Y #%1").arg(n));
        item->SetOrd(n);
        ZevxBench::addProperties(*item, n);
        item->SetParentItem(group);
        group->AddSubItem(item);
        catalog->AddItem(item);
    }
    return catalog;
}

std::unique_ptr<CDlgCatalogImpex> openDialog(boost::shared_ptr<CCatalog> local, int direction)
{
    auto dlg = std::make_unique<CDlgCatalogImpex>();
    dlg->SetParameters(direction, QStringLiteral("BENCH"));
    dlg->SetLocalCatalog(std::move(local));
    dlg->show();
    QCoreApplication::processEvents();
    return dlg;
}

int rows(QWidget* dlg, int treeId)
{
    int count = 0;
    for (QTreeWidgetItemIterator it(findControl<QTreeWidget>(dlg, treeId)); *it; ++it)
        ++count;
    return count - 1;
}

void selectFirstEntry(QWidget* dlg, int treeId)
{
    auto* tree = findControl<QTreeWidget>(dlg, treeId);
    tree->setCurrentItem(tree->topLevelItem(0)->child(0));
}

void click(QWidget* dlg, int id)
{
    findControl<QAbstractButton>(dlg, id)->click();
}

void BM_OpenDialog(benchmark::State& state)
{
    auto catalog = boost::make_shared<CCatalog>();
    ZevxBench::generateCatalog(*catalog, 100000);
    for (auto _ : state)
    {
        auto dlg = openDialog(catalog, CDlgCatalogImpex::Export);
        if (rows(dlg.get(), Ids::TreeLocal) != 100000)
            state.SkipWithError("the left tree is incomplete");
        state.PauseTiming();
        dlg.reset();
        state.ResumeTiming();
    }
}

QString exportedFile()
{
    return tempDir().filePath(QStringLiteral("big.xml"));
}

void BM_ExportGroup(benchmark::State& state)
{
    const auto catalog = groupCatalog();
    for (auto _ : state)
    {
        state.PauseTiming();
        auto dlg = openDialog(catalog, CDlgCatalogImpex::Export);
        findControl<QLineEdit>(dlg.get(), Ids::EditPath)->setText(exportedFile());
        selectFirstEntry(dlg.get(), Ids::TreeLocal);
        state.ResumeTiming();
        click(dlg.get(), Ids::BtnAdd);
        dlg->OnOK();
        state.PauseTiming();
        if (dlg->result() != QDialog::Accepted || rows(dlg.get(), Ids::TreeTarget) != GroupItems + 1)
            state.SkipWithError("the export did not go through");
        dlg.reset();
        state.ResumeTiming();
    }
}

void BM_ImportGroup(benchmark::State& state)
{
    if (!QFileInfo::exists(exportedFile()))
    {
        state.SkipWithError("no exported file: run BM_ExportGroup first");
        return;
    }
    for (auto _ : state)
    {
        state.PauseTiming();
        auto empty = boost::make_shared<CCatalog>();
        empty->SetReference(QStringLiteral("BENCH"));
        auto dlg = openDialog(empty, CDlgCatalogImpex::Import);
        g_host.queueOpenFileName(exportedFile());
        state.ResumeTiming();
        click(dlg.get(), Ids::BtnBrowse);
        selectFirstEntry(dlg.get(), Ids::TreeTarget);
        click(dlg.get(), Ids::BtnRemove);
        state.PauseTiming();
        if (empty->GetAllElementsMap()->size() != size_t(GroupItems + 1))
            state.SkipWithError("the import did not go through");
        dlg.reset();
        state.ResumeTiming();
    }
}

// The client on a new empty repository of the state's back end; false (state skipped) when
// it cannot be had.
int& repositoriesMade()
{
    static int made = 0;
    return made;
}

// The PostgreSQL server of the benchmark's argument (1: fsync off, 2: synced), started on
// first use; null for SQLite or when no server can be made.
PostgresServer* serverFor(const benchmark::State& state)
{
    if (state.range(0) == 0)
        return nullptr;
    const bool synced = state.range(0) == 2;
    std::unique_ptr<PostgresServer>& server = synced ? g_syncingServer : g_server;
    if (!server && PostgresServer::unavailableReason().isEmpty())
    {
        server = std::make_unique<PostgresServer>(synced);
        if (!server->start())
            server.reset();
    }
    return server.get();
}

// A new, empty repository for each run: "impex<n>" (an SQLite file or a PostgreSQL database).
bool freshRepository(benchmark::State& state)
{
    const QString name = QStringLiteral("impex%1").arg(++repositoriesMade());
    QString url = QStringLiteral("sqlite:") + tempDir().filePath(name + ".sqlite");
    if (PostgresServer* server = serverFor(state))
    {
        server->psql(QStringLiteral("CREATE DATABASE %1 OWNER %2;").arg(name, PostgresServer::writer));
        url = server->url(PostgresServer::writer, PostgresServer::writerPassword, name);
    }
    else if (state.range(0) != 0)
    {
        state.SkipWithError("no PostgreSQL server");
        return false;
    }
    if (!CRepositoryStorageManager::Instance()->Configure(url))
    {
        state.SkipWithError(qPrintable(CRepositoryStorageManager::Instance()->LastError()));
        return false;
    }
    return true;
}

void BM_SendGroup(benchmark::State& state)
{
    const auto catalog = groupCatalog();
    qint64 statements = 0;
    for (auto _ : state)
    {
        state.PauseTiming();
        if (!freshRepository(state))
            return;
        auto dlg = openDialog(catalog, CDlgCatalogImpex::Export);
        click(dlg.get(), Ids::RadioRepository);
        selectFirstEntry(dlg.get(), Ids::TreeLocal);
        const QString database = QStringLiteral("impex%1").arg(repositoriesMade());
        PostgresServer* server = serverFor(state);
        const qint64 before = server ? server->statementsRun(database) : 0;
        state.ResumeTiming();
        click(dlg.get(), Ids::BtnAdd);
        state.PauseTiming();
        if (server)
            statements += server->statementsRun(database) - before;
        if (rows(dlg.get(), Ids::TreeTarget) != GroupItems + 1)
            state.SkipWithError("the send did not go through");
        dlg.reset();
        state.ResumeTiming();
    }
    state.counters["round_trips_per_item"] =
        double(statements) / double(qint64(GroupItems) * state.iterations());
}

void BM_FillFromRepository(benchmark::State& state)
{
    const auto catalog = groupCatalog();
    if (!freshRepository(state) ||
        !Impex::ClientRepository()->AddCatalogItem(QStringLiteral("BENCH"), QStringLiteral("Bench"),
                                                   catalog->GetItembyGuid(ZevxBench::benchGuid(0)), 1))
        return;
    auto dlg = openDialog(catalog, CDlgCatalogImpex::Export);
    click(dlg.get(), Ids::RadioRepository);
    for (auto _ : state)
    {
        dlg->ReloadNetworkRepoItems();
        QCoreApplication::processEvents();
        if (rows(dlg.get(), Ids::TreeTarget) != GroupItems + 1)
            state.SkipWithError("the fill is incomplete");
    }
}

BENCHMARK(BM_OpenDialog)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_ExportGroup)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_ImportGroup)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_SendGroup)->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(BM_FillFromRepository)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", qgetenv("QT_QPA_PLATFORM").isEmpty() ? "offscreen" : qgetenv("QT_QPA_PLATFORM"));
    QApplication app(argc, argv);
    Host::HostServices::install(&g_host);
    // The dialog fills its left tree for a catalog of the registry; the catalog itself is the
    // one each benchmark hands the dialog.
    g_store = std::make_unique<EditorTestStore>(tempDir().path());
    EditorTestStore::Entry entry;
    entry.reference = entry.nameUI = QStringLiteral("BENCH");
    g_store->add(entry);
    if (!g_store->write())
        qFatal("the benchmark store could not be written");
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    CRepositoryStorageManager::Instance()->Reset();
    g_server.reset();
    g_syncingServer.reset();
    return 0;
}
