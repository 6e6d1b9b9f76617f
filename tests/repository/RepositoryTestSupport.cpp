#include "tests/repository/RepositoryTestSupport.h"

#include "catalog/Category.h"
#include "catalog/PropertiesEx.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QtTest>
#include <boost/make_shared.hpp>
#include <memory>

namespace RepositoryTest
{

using namespace ZEVGis::Data;

namespace
{

std::unique_ptr<PostgresServer> server;
QString failure;

} // namespace

void stopSharedServer()
{
    server.reset();
}

PostgresServer* sharedServer(QString& why)
{
    if (!server && failure.isEmpty())
    {
        failure = PostgresServer::unavailableReason();
        if (failure.isEmpty())
        {
            server = std::make_unique<PostgresServer>();
            if (!server->start())
            {
                failure =
                    QStringLiteral("PostgreSQL test server did not start: %1").arg(server->error());
                server.reset();
            }
        }
    }
    why = failure;
    return server.get();
}

namespace
{
QString sqliteFile(const QTemporaryDir& folder)
{
    return folder.filePath(QStringLiteral("repository.sqlite"));
}
} // namespace

QString freshRepository(const QString& backend, QTemporaryDir& folder, QString& why,
                        QString* database)
{
    static int counter = 0;
    ++counter;
    if (backend == u"sqlite")
        return QStringLiteral("sqlite:") + sqliteFile(folder);
    PostgresServer* server = sharedServer(why);
    if (!server)
        return QString();
    const QString name = QStringLiteral("repo%1").arg(counter);
    if (!server->psql(
            QStringLiteral("CREATE DATABASE %1 OWNER %2").arg(name, PostgresServer::writer)))
    {
        why = server->error();
        return QString();
    }
    if (database)
        *database = name;
    return server->url(PostgresServer::writer, PostgresServer::writerPassword, name);
}

QString sqlTarget(const QString& backend, const QTemporaryDir& folder, const QString& url)
{
    return backend == u"sqlite" ? sqliteFile(folder) : url.section(u'/', -1);
}

QString sql(const QString& backend, const QString& target, const QString& statement)
{
    if (backend == u"postgresql")
    {
        QString why, out;
        PostgresServer* server = sharedServer(why);
        if (!server || !server->psql(statement, &out, PostgresServer::Superuser, target))
            return QStringLiteral("<failed: %1>").arg(server ? server->error() : why);
        return out;
    }
    QString result;
    {
        QSqlDatabase db =
            QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("side"));
        db.setDatabaseName(target);
        QSqlQuery query(db);
        if (!db.open() || !query.exec(statement))
            result = QStringLiteral("<failed>");
        else if (query.next())
            result = query.value(0).toString();
    }
    QSqlDatabase::removeDatabase(QStringLiteral("side"));
    return result;
}

void addBackendRows()
{
    QTest::addColumn<QString>("backend");
    QTest::newRow("sqlite") << QStringLiteral("sqlite");
    QTest::newRow("postgresql") << QStringLiteral("postgresql");
}

void addPostgresRow()
{
    QTest::addColumn<QString>("backend");
    QTest::newRow("postgresql") << QStringLiteral("postgresql");
}

Item makeItem(const QString& name, bool group, const Item& parent, int ord)
{
    auto item = boost::make_shared<CCatalogItem>();
    item->SetGUID(QStringLiteral("{%1}").arg(name));
    item->SetName(name);
    item->SetIsGroup(group);
    item->SetOrd(ord);
    if (parent)
    {
        item->SetParentItem(parent);
        parent->AddSubItem(item);
    }
    return item;
}

Item makeFullItem(const QString& name)
{
    Item item = makeItem(QStringLiteral("full"), false);
    item->SetName(name);
    item->SetMsgName(4711);
    item->SetIsDefault(1);
    item->SetOrd(-7);
    item->SetPictureRef(QStringLiteral("pictures/kabel \"A\".png"));
    item->SetTemplateName(QStringLiteral("Kabel <NN>"));
    item->SetParentItemGuid(QStringLiteral("{parent-not-sent}"));
    auto general = boost::make_shared<CCategory>(QStringLiteral("Općenito"));
    general->AddPropertyEx(boost::make_shared<CPropertyEx>(QString::fromUtf16(CatalogItemNameTag),
                                                           CDataBox::fromString(name)));
    general->AddPropertyEx(
        boost::make_shared<CPropertyEx>(QStringLiteral("COUNT"), CDataBox::fromInt(-42)));
    general->AddPropertyEx(
        boost::make_shared<CPropertyEx>(QStringLiteral("LENGTH"), CDataBox::fromDouble(0.1)));
    general->AddPropertyEx(
        boost::make_shared<CPropertyEx>(QStringLiteral("EMPTY"), CDataBox::fromString(QString())));
    auto details = boost::make_shared<CCategory>(QStringLiteral("Details & <more>"));
    auto flag = boost::make_shared<CPropertyEx>(QStringLiteral("BURIED"), CDataBox::fromBool(true));
    flag->SetReadOnly(1);
    flag->SetCaption(QStringLiteral("Ukopan?"));
    details->AddPropertyEx(flag);
    auto choice = boost::make_shared<CPropertyEx>(
        QStringLiteral("VOLTAGE"), CDataBox(DataType::Choice, QStringLiteral("0,4 kV")));
    choice->SetChoices(
        {QStringLiteral("0,4 kV"), QStringLiteral("10 kV"), QStringLiteral("\"20\" & <35> kV")});
    choice->SetPictureRef(QStringLiteral("voltage.svg"));
    details->AddPropertyEx(choice);
    auto lines = boost::make_shared<CPropertyEx>(
        QStringLiteral("NOTE"), CDataBox::fromString(QStringLiteral("line 1\nline 2\ttab")));
    details->AddPropertyEx(lines);
    auto properties = boost::make_shared<CPropertiesEx>();
    properties->AddCategory(general);
    properties->AddCategory(details);
    item->SetProperties(properties);
    return item;
}

QString differences(CCatalogItem& expected, CCatalogItem& actual)
{
    const auto differ = [](const char* what, const QString& a, const QString& b)
    { return QStringLiteral("%1: expected \"%2\", got \"%3\"").arg(QLatin1String(what), a, b); };
    if (expected.GetGUID() != actual.GetGUID())
        return differ("GUID", expected.GetGUID(), actual.GetGUID());
    if (expected.GetName() != actual.GetName())
        return differ("name", expected.GetName(), actual.GetName());
    if (expected.GetParentItemGuid() != actual.GetParentItemGuid())
        return differ("parent", expected.GetParentItemGuid(), actual.GetParentItemGuid());
    if (expected.GetPictureRef() != actual.GetPictureRef())
        return differ("picture", expected.GetPictureRef(), actual.GetPictureRef());
    if (expected.GetTemplateName() != actual.GetTemplateName())
        return differ("template", expected.GetTemplateName(), actual.GetTemplateName());
    const auto numbers = [](CCatalogItem& item)
    {
        return QStringLiteral("msg %1 group %2 ord %3 default %4")
            .arg(item.GetMsgName())
            .arg(item.IsGroup())
            .arg(item.GetOrd())
            .arg(item.GetIsDefault());
    };
    if (numbers(expected) != numbers(actual))
        return differ("numbers", numbers(expected), numbers(actual));
    const auto& want = expected.GetProperties()->categories();
    const auto& got = actual.GetProperties()->categories();
    if (want.size() != got.size())
        return differ("categories", QString::number(want.size()), QString::number(got.size()));
    for (size_t c = 0; c < want.size(); ++c)
    {
        if (want[c]->GetName() != got[c]->GetName())
            return differ("category", want[c]->GetName(), got[c]->GetName());
        const auto& wantProperties = want[c]->GetPropertyExVector();
        const auto& gotProperties = got[c]->GetPropertyExVector();
        if (wantProperties.size() != gotProperties.size())
            return differ("properties", QString::number(wantProperties.size()),
                          QString::number(gotProperties.size()));
        for (size_t p = 0; p < wantProperties.size(); ++p)
        {
            const CPropertyEx& a = *wantProperties[p];
            const CPropertyEx& b = *gotProperties[p];
            if (a.GetTag() != b.GetTag() || a.GetValue().GetType() != b.GetValue().GetType() ||
                a.GetValue().ToString() != b.GetValue().ToString() ||
                a.GetCaption() != b.GetCaption() || a.GetPictureRef() != b.GetPictureRef() ||
                a.IsReadOnly() != b.IsReadOnly() || a.GetChoices() != b.GetChoices())
                return differ("property", a.GetTag() + u'=' + a.GetValue().ToString(),
                              b.GetTag() + u'=' + b.GetValue().ToString());
        }
    }
    return QString();
}

QStringList names(const Records& records)
{
    QStringList result;
    for (const auto& record : records)
        result << QString::fromStdWString(record->GetName());
    return result;
}

namespace
{

void walk(const QString& catalogReference, const QString& parentId, int depth, QStringList& lines)
{
    Records children;
    auto* repository = Repository::CRepositoryStorageManager::Instance();
    if (!repository->GetChildCatalogItems(catalogReference, parentId, children, 0))
    {
        lines << QStringLiteral("<failed: %1>").arg(repository->LastError());
        return;
    }
    for (const auto& child : children)
    {
        lines << QString(depth * 2, u' ') + QString::fromStdWString(child->GetName());
        if (child->GetIsGroup())
            walk(catalogReference, QString::fromStdWString(child->GetCatalogueId()), depth + 1,
                 lines);
    }
}

} // namespace

QStringList tree(const QString& catalogReference)
{
    QStringList lines;
    walk(catalogReference, QString(), 0, lines);
    return lines;
}

} // namespace RepositoryTest
