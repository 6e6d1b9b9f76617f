// The repository client on a catalog of 10,000 entries in 1,000 groups, on SQLite and on a
// PostgreSQL server of its own over a Unix socket: a push with descendants, a tree filled as
// the transfer dialog fills it, every record fetched whole. Argument 0: SQLite, 1: PostgreSQL.
//
// round_trips_per_item: the statements the server ran for the client (pg_stat_statements;
// QtSql sends one statement per round trip) per item; SQLite runs in-process, with none.

#include "bench/catalog/CatalogGenerator.h"
#include "repository/RepositoryStorageManager.h"
#include "tests/support/PostgresServer.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace
{

using namespace ZEVGis::Data;
using Repository::CRepositoryStorageManager;

constexpr int TopGroups = 100;
constexpr int SubGroups = 9;   // per top group: 1,000 groups in all
constexpr int ItemsPerGroup = 10; // in each sub-group: 9,000 items
constexpr int Entries = TopGroups * (1 + SubGroups * (1 + ItemsPerGroup));
const QString Reference = QStringLiteral("BENCH");

const CCatalog& catalog()
{
    static CCatalog* made = [] {
        auto* c = new CCatalog;
        c->SetReference(Reference);
        int n = 0;
        auto make = [&](const boost::shared_ptr<CCatalogItem>& parent, bool group) {
            auto item = boost::make_shared<CCatalogItem>();
            item->SetGUID(ZevxBench::benchGuid(n));
            item->SetName(group ? QStringLiteral("Grupa %1").arg(n) : QStringLiteral("NA2XS(F)2Y #%1").arg(n));
            item->SetIsGroup(group);
            item->SetOrd(n % 17);
            ZevxBench::addProperties(*item, n++);
            if (parent) {
                item->SetParentItem(parent);
                parent->AddSubItem(item);
            }
            c->AddItem(item);
            return item;
        };
        for (int t = 0; t < TopGroups; ++t) {
            auto top = make(nullptr, true);
            for (int s = 0; s < SubGroups; ++s) {
                auto sub = make(top, true);
                for (int i = 0; i < ItemsPerGroup; ++i)
                    make(sub, false);
            }
        }
        return c;
    }();
    return *made;
}

// Started on first use, stopped at the end of main.
std::unique_ptr<PostgresServer> g_server;
QString g_database; // the PostgreSQL database in use

qint64 statementsRun()
{
    return g_database.isEmpty() || !g_server ? 0 : g_server->statementsRun(g_database);
}

QTemporaryDir& tempDir()
{
    static QTemporaryDir dir;
    return dir;
}

PostgresServer* server()
{
    static bool tried = false;
    if (!tried) {
        tried = true;
        g_server = std::make_unique<PostgresServer>();
        if (!g_server->start()) {
            fprintf(stderr, "PostgreSQL: %s\n", qPrintable(g_server->error()));
            g_server.reset();
        }
    }
    return g_server.get();
}

// Points the client at a new empty repository; false (state skipped) when it cannot.
bool freshRepository(benchmark::State& state)
{
    static int made = 0;
    const QString name = QStringLiteral("bench%1").arg(++made);
    QString url = QStringLiteral("sqlite:") + tempDir().filePath(name + ".sqlite");
    if (state.range(0) == 1) {
        if (!PostgresServer::unavailableReason().isEmpty() || !server()) {
            state.SkipWithError("no PostgreSQL server");
            return false;
        }
        server()->psql(QStringLiteral("CREATE DATABASE %1 OWNER %2;").arg(name, PostgresServer::writer));
        url = server()->url(PostgresServer::writer, PostgresServer::writerPassword, name);
        g_database = name;
    } else {
        g_database.clear();
    }
    if (!CRepositoryStorageManager::Instance()->Configure(url)) {
        state.SkipWithError(qPrintable(CRepositoryStorageManager::Instance()->LastError()));
        return false;
    }
    return true;
}

bool pushAll(CRepositoryStorageManager& repository)
{
    std::vector<boost::shared_ptr<CCatalogItem>> tops;
    const_cast<CCatalog&>(catalog()).GetSortedRootElements(tops);
    for (const auto& top : tops)
        if (!repository.AddCatalogItem(Reference, QStringLiteral("Bench"), top, 1))
            return false;
    return true;
}

void report(benchmark::State& state, qint64 writes, qint64 items)
{
    state.counters["items"] = double(items);
    state.counters["round_trips_per_item"] = state.range(0) == 1 ? double(writes) / double(items) : 0.0;
}

void BM_PushWithDescendants(benchmark::State& state)
{
    catalog();
    qint64 writes = 0;
    for (auto _ : state) {
        state.PauseTiming();
        if (!freshRepository(state))
            return;
        const qint64 before = statementsRun();
        state.ResumeTiming();
        if (!pushAll(*CRepositoryStorageManager::Instance()))
            state.SkipWithError(qPrintable(CRepositoryStorageManager::Instance()->LastError()));
        state.PauseTiming();
        writes += statementsRun() - before;
        state.ResumeTiming();
    }
    report(state, writes, qint64(Entries) * state.iterations());
}

// The dialog's fill: the children of the top level and of every group, the accessibility
// asked before each record.
int fillTree(CRepositoryStorageManager& repository, const QString& parent)
{
    std::vector<boost::shared_ptr<Repository::CNetCatalogueItem>> records;
    repository.GetChildCatalogItems(Reference, parent, records, 0);
    int count = 0;
    for (const auto& record : records) {
        if (!repository.IsRepositoryAccessible())
            return count;
        ++count;
        if (record->GetIsGroup())
            count += fillTree(repository, QString::fromStdWString(record->GetCatalogueId()));
    }
    return count;
}

void BM_FillTree(benchmark::State& state)
{
    catalog();
    if (!freshRepository(state) || !pushAll(*CRepositoryStorageManager::Instance()))
        return;
    qint64 writes = 0;
    for (auto _ : state) {
        state.PauseTiming();
        const qint64 before = statementsRun();
        state.ResumeTiming();
        if (fillTree(*CRepositoryStorageManager::Instance(), QString()) != Entries)
            state.SkipWithError("the tree came back incomplete");
        state.PauseTiming();
        writes += statementsRun() - before;
        state.ResumeTiming();
    }
    report(state, writes, qint64(Entries) * state.iterations());
}

void BM_FetchEveryItem(benchmark::State& state)
{
    catalog();
    if (!freshRepository(state) || !pushAll(*CRepositoryStorageManager::Instance()))
        return;
    auto* repository = CRepositoryStorageManager::Instance();
    qint64 writes = 0;
    for (auto _ : state) {
        state.PauseTiming();
        const qint64 before = statementsRun();
        state.ResumeTiming();
        for (const auto& [guid, item] : *const_cast<CCatalog&>(catalog()).GetAllElementsMap())
            if (!repository->GetCatalogItemById(Reference, guid, 1)) {
                state.SkipWithError("a record is missing");
                break;
            }
        state.PauseTiming();
        writes += statementsRun() - before;
        state.ResumeTiming();
    }
    report(state, writes, qint64(Entries) * state.iterations());
}

BENCHMARK(BM_PushWithDescendants)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_FillTree)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_FetchEveryItem)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv); // QtSql loads its drivers through the application
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    CRepositoryStorageManager::Instance()->Reset();
    g_server.reset();
    return 0;
}
