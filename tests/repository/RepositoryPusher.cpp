// Pushes one group of a catalog again and again, as an editor would: the test runs two of
// these at once on overlapping groups.
//   repository_pusher URL REF FIRST COUNT ROUNDS
// The group "{G}" gets the sub-groups {S<FIRST>}..{S<FIRST+COUNT-1>}, each with two items.
// Every round changes every entry (its picture names the pusher and the round): a record sent
// unchanged is not written at all.
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
    std::vector<RepositoryTest::Item> entries{group};
    for (int i = first; i < first + count; ++i)
    {
        auto sub = makeItem(QStringLiteral("S%1").arg(i), true, group, i);
        entries.push_back(sub);
        entries.push_back(makeItem(QStringLiteral("S%1-a").arg(i), false, sub, 0));
        entries.push_back(makeItem(QStringLiteral("S%1-b").arg(i), false, sub, 1));
    }
    for (int round = 0; round < rounds; ++round)
    {
        for (const auto& entry : entries)
            entry->SetPictureRef(QStringLiteral("pusher %1, round %2").arg(first).arg(round));
        if (!repository->AddCatalogItem(args[2], QStringLiteral("Pushed"), group, 1))
        {
            err << repository->LastError() << '\n';
            return 1;
        }
    }
    // Ends still connected, as programs do: the client must close cleanly at exit.
    return 0;
}
