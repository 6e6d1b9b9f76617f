// Pushes one group of a catalog again and again, as an editor would: the test runs two of
// these at once on overlapping groups.
//   repository_pusher URL REF FIRST COUNT ROUNDS
// The group "{G}" gets the sub-groups {S<FIRST>}..{S<FIRST+COUNT-1>}, each with two items.
// Exit 0 when every push succeeded, else 1 with the client's line on standard error.

#include "tests/repository/RepositoryTestSupport.h"

#include <QCoreApplication>
#include <QTextStream>

using RepositoryTest::makeItem;

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    QTextStream err(stderr);
    if (args.size() != 6)
    {
        err << "usage: repository_pusher URL REF FIRST COUNT ROUNDS\n";
        return 2;
    }
    const int first = args[3].toInt();
    const int count = args[4].toInt();
    const int rounds = args[5].toInt();
    auto* repository = Repository::CRepositoryStorageManager::Instance();
    if (!repository->Configure(args[1]))
    {
        err << repository->LastError() << '\n';
        return 1;
    }
    auto group = makeItem(QStringLiteral("G"), true);
    for (int i = first; i < first + count; ++i)
    {
        auto sub = makeItem(QStringLiteral("S%1").arg(i), true, group, i);
        makeItem(QStringLiteral("S%1-a").arg(i), false, sub, 0);
        makeItem(QStringLiteral("S%1-b").arg(i), false, sub, 1);
    }
    for (int round = 0; round < rounds; ++round)
    {
        if (!repository->AddCatalogItem(args[2], QStringLiteral("Pushed"), group, 1))
        {
            err << repository->LastError() << '\n';
            return 1;
        }
    }
    // Ends still connected, as programs do: the client must close cleanly at exit.
    return 0;
}
