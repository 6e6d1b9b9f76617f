// Pushes one group of a catalog again and again, as an editor would: the test runs two of
// these at once on overlapping groups.
//   repository_pusher URL REF FIRST COUNT ROUNDS
// The group "{G}" gets the sub-groups {S<FIRST>}..{S<FIRST+COUNT-1>}, each with two items.
// Exit 0 when every push succeeded, else 1 with the client's line on standard error.

#include "repository/RepositoryStorageManager.h"

#include <QCoreApplication>
#include <QTextStream>
#include <boost/make_shared.hpp>

using ZEVGis::Data::CCatalogItem;

namespace
{

boost::shared_ptr<CCatalogItem> child(const boost::shared_ptr<CCatalogItem>& parent, const QString& name,
                                      bool group, int ord)
{
    auto item = boost::make_shared<CCatalogItem>();
    item->SetGUID(QStringLiteral("{%1}").arg(name));
    item->SetName(name);
    item->SetIsGroup(group);
    item->SetOrd(ord);
    if (parent) {
        item->SetParentItem(parent);
        parent->AddSubItem(item);
    }
    return item;
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments();
    QTextStream err(stderr);
    if (args.size() != 6) {
        err << "usage: repository_pusher URL REF FIRST COUNT ROUNDS\n";
        return 2;
    }
    const int first = args[3].toInt();
    const int count = args[4].toInt();
    const int rounds = args[5].toInt();
    auto* repository = Repository::CRepositoryStorageManager::Instance();
    if (!repository->Configure(args[1])) {
        err << repository->LastError() << '\n';
        return 1;
    }
    auto group = child({}, QStringLiteral("G"), true, 0);
    for (int i = first; i < first + count; ++i) {
        auto sub = child(group, QStringLiteral("S%1").arg(i), true, i);
        child(sub, QStringLiteral("S%1-a").arg(i), false, 0);
        child(sub, QStringLiteral("S%1-b").arg(i), false, 1);
    }
    for (int round = 0; round < rounds; ++round) {
        if (!repository->AddCatalogItem(args[2], QStringLiteral("Pushed"), group, 1)) {
            err << repository->LastError() << '\n';
            return 1;
        }
    }
    repository->Reset();
    return 0;
}
