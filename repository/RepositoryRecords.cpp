#include "repository/RepositoryRecords.h"
#include "repository/RepositoryStore.h"

#include "catalog/CatalogItemXml.h"

#include <QDateTime>
#include <QSqlQuery>
#include <algorithm>
#include <unordered_set>

namespace Repository
{

using ZEVGis::Data::CCatalogItem;

namespace
{

// Records per INSERT: one round trip for many rows (8 values each, well under the
// parameter limits of both databases).
constexpr int BatchRows = 100;
// Deeper than the catalog format nests: taken for a loop, not a tree.
constexpr int MaxDepth = 256;

// Bound as '' rather than NULL: the columns are NOT NULL and '' means "top level".
QVariant text(const QString& value)
{
    return value.isNull() ? QVariant(QString::fromLatin1("")) : QVariant(value);
}

// Adds the records, or replaces those whose columns or content differ. A record sent again
// unchanged is left alone: its revision and who changed it last stay true, and the statement
// writes nothing, so the server neither locks the row nor waits for its log at the commit.
// That is what makes the dialog's walk, which sends every item a second time, cheap.
// The held record is looked up in a scalar subquery by its key alone: as a NOT EXISTS join
// PostgreSQL may plan it on the children's index, or as a scan of the whole table when a
// fresh table has no statistics yet.
QString upsertSql(int rows)
{
    QString sql =
        QStringLiteral("INSERT INTO items (catalog_ref, id, parent_id, name, is_group, ord, "
                       "content, revision, changed_at, changed_by) "
                       "SELECT column1, column2, column3, column4, column5, column6, column7, 1, "
                       "column8, column9 FROM (VALUES ");
    for (int i = 0; i < rows; ++i)
    {
        if (i > 0)
            sql += QStringLiteral(", ");
        sql += QStringLiteral("(?, ?, ?, ?, CAST(? AS INTEGER), CAST(? AS INTEGER), ?, ?, ?)");
    }
    sql += QStringLiteral(
        ") AS sent WHERE COALESCE((SELECT CASE WHEN held.parent_id = sent.column3 "
        "AND held.name = sent.column4 AND held.is_group = sent.column5 "
        "AND held.ord = sent.column6 AND held.content = sent.column7 THEN 1 ELSE 0 END "
        "FROM items AS held WHERE held.catalog_ref = sent.column1 AND held.id = sent.column2), "
        "0) = 0 "
        "ON CONFLICT (catalog_ref, id) DO UPDATE SET parent_id = excluded.parent_id, "
        "name = excluded.name, is_group = excluded.is_group, ord = excluded.ord, "
        "content = excluded.content, revision = items.revision + 1, "
        "changed_at = excluded.changed_at, changed_by = excluded.changed_by");
    return sql;
}

} // namespace

std::vector<RecordRow> RecordsOf(CCatalogItem& item, bool withDescendants)
{
    std::vector<RecordRow> rows;
    std::unordered_set<const CCatalogItem*> seen;
    struct Pending
    {
        CCatalogItem* item;
        QString parentId;
        int depth;
    };
    std::vector<Pending> pending{{&item, item.GetParentItemGuid(), 0}};
    std::vector<boost::shared_ptr<CCatalogItem>> subItems;
    while (!pending.empty())
    {
        const Pending next = pending.back();
        pending.pop_back();
        if (!seen.insert(next.item).second || next.item->GetGUID().isEmpty())
            continue;
        CCatalogItem& at = *next.item;
        rows.push_back({at.GetGUID(), next.parentId, at.GetName(), at.IsGroup() ? 1 : 0,
                        at.GetOrd(), QString::fromUtf8(ZEVGis::Data::CatalogItemToXml(at))});
        if (!withDescendants || next.depth >= MaxDepth)
            continue;
        subItems.clear();
        at.GetSortedSubItems(subItems);
        for (const auto& sub : subItems)
            if (sub)
                pending.push_back({sub.get(), at.GetGUID(), next.depth + 1});
    }
    std::sort(rows.begin(), rows.end(),
              [](const RecordRow& a, const RecordRow& b) { return a.id < b.id; });
    // One record per GUID: the same GUID twice in one INSERT is an error on PostgreSQL.
    rows.erase(std::unique(rows.begin(), rows.end(),
                           [](const RecordRow& a, const RecordRow& b) { return a.id == b.id; }),
               rows.end());
    return rows;
}

void WrittenRecords::remember(const QString& catalogReference,
                              const std::vector<RecordRow>& records)
{
    for (const RecordRow& row : records)
        m_digests[keyOf(catalogReference, row.id)] = digestOf(row);
}

bool WrittenRecords::holdAll(const QString& catalogReference,
                             const std::vector<RecordRow>& records) const
{
    if (records.empty())
        return false;
    for (const RecordRow& row : records)
    {
        const auto found = m_digests.find(keyOf(catalogReference, row.id));
        if (found == m_digests.end() || found->second != digestOf(row))
            return false;
    }
    return true;
}

void WrittenRecords::forget(const QString& catalogReference, const QString& id)
{
    m_digests.erase(keyOf(catalogReference, id));
}

WrittenRecords::Digest WrittenRecords::digestOf(const RecordRow& row)
{
    // Two seeds: a record taken for unchanged while it is not would not be sent at all.
    const auto digest = [&](size_t seed)
    { return qHashMulti(seed, row.parentId, row.name, row.isGroup, row.ord, row.content); };
    return {digest(0x5a17e5u), digest(0x9e3779b97f4a7c15u)};
}

QString WrittenRecords::keyOf(const QString& catalogReference, const QString& id)
{
    return catalogReference + QLatin1Char('\n') + id;
}

bool WriteCatalogRow(RepositoryStore& store, const QString& catalogReference,
                     const QString& catalogName)
{
    const bool named = !catalogName.isEmpty();
    return store.exec(
               named ? QStringLiteral(
                           "INSERT INTO catalogs (ref, display_name) VALUES (?, ?) "
                           "ON CONFLICT (ref) DO UPDATE SET display_name = excluded.display_name")
                     : QStringLiteral(
                           "INSERT INTO catalogs (ref, display_name) VALUES (?, ?) "
                           "ON CONFLICT (ref) DO UPDATE SET display_name = catalogs.display_name"),
               {text(catalogReference), text(named ? catalogName : catalogReference)}) != nullptr;
}

bool WriteRecords(RepositoryStore& store, const QString& catalogReference,
                  const std::vector<RecordRow>& records)
{
    const QString changedAt = QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs);
    const QString changedBy = store.changedBy();
    const int total = int(records.size());
    QVariantList values;
    for (int start = 0; start < total; start += BatchRows)
    {
        const int rows = std::min(BatchRows, total - start);
        values.clear();
        for (int i = start; i < start + rows; ++i)
        {
            const RecordRow& row = records[size_t(i)];
            values << text(catalogReference) << text(row.id) << text(row.parentId) << text(row.name)
                   << row.isGroup << row.ord << text(row.content) << changedAt << text(changedBy);
        }
        if (!store.exec(upsertSql(rows), values))
            return false;
        if (store.progress)
            store.progress(start + rows, total);
    }
    return true;
}

bool ReadChildren(RepositoryStore& store, const QString& catalogReference, const QString& parentId,
                  std::vector<boost::shared_ptr<CNetCatalogueItem>>& out)
{
    QSqlQuery* query =
        store.exec(QStringLiteral("SELECT id, parent_id, name, is_group, ord FROM items "
                                  "WHERE catalog_ref = ? AND parent_id = ? ORDER BY ord"),
                   {text(catalogReference), text(parentId)});
    if (!query)
        return false;
    struct Row
    {
        QString id, parentId, name;
        int isGroup, ord;
    };
    std::vector<Row> rows;
    while (query->next())
        rows.push_back({query->value(0).toString(), query->value(1).toString(),
                        query->value(2).toString(), query->value(3).toInt(),
                        query->value(4).toInt()});
    // Names compared here, not by the server: its collation differs between databases.
    std::stable_sort(rows.begin(), rows.end(),
                     [](const Row& a, const Row& b)
                     {
                         if (a.ord != b.ord)
                             return a.ord < b.ord;
                         const int byName = a.name.compare(b.name);
                         return byName != 0 ? byName < 0 : a.id < b.id;
                     });
    out.clear();
    out.reserve(rows.size());
    for (const Row& row : rows)
        out.push_back(boost::shared_ptr<CNetCatalogueItem>(
            new CNetCatalogueItem(row.id.toStdWString(), row.parentId.toStdWString(),
                                  row.name.toStdWString(), row.isGroup, row.ord)));
    return true;
}

bool ReadItem(RepositoryStore& store, const QString& catalogReference, const QString& id,
              boost::shared_ptr<CCatalogItem>& item)
{
    item.reset();
    QSqlQuery* query = store.exec(QStringLiteral("SELECT parent_id, content FROM items "
                                                 "WHERE catalog_ref = ? AND id = ?"),
                                  {text(catalogReference), text(id)});
    if (!query)
        return false;
    if (!query->next())
        return true; // not there: an empty pointer, and no failure
    const QString parentId = query->value(0).toString();
    QString why;
    item = ZEVGis::Data::CatalogItemFromXml(query->value(1).toString().toUtf8(), &why);
    if (!item)
        return store.refuse(
            QStringLiteral("the stored content is not a catalog item: %1").arg(why));
    // The columns are what the tree shows: they win over the content.
    item->SetGUID(id);
    item->SetParentItemGuid(parentId);
    return true;
}

bool DeleteRecord(RepositoryStore& store, const QString& catalogReference, const QString& id)
{
    // One statement: a child sent by another editor meanwhile cannot slip in between a
    // check and the delete.
    QSqlQuery* deleted =
        store.exec(QStringLiteral("DELETE FROM items WHERE catalog_ref = ? AND id = ? "
                                  "AND NOT EXISTS (SELECT 1 FROM items AS child "
                                  "WHERE child.catalog_ref = ? AND child.parent_id = ?)"),
                   {text(catalogReference), text(id), text(catalogReference), text(id)});
    if (!deleted)
        return false;
    if (deleted->numRowsAffected() > 0)
        return true;
    QSqlQuery* children = store.exec(
        QStringLiteral("SELECT COUNT(*) FROM items WHERE catalog_ref = ? AND parent_id = ?"),
        {text(catalogReference), text(id)});
    if (!children)
        return false;
    const int count = children->next() ? children->value(0).toInt() : 0;
    if (count > 0)
        return store.refuse(QStringLiteral("the record still has %1 child record(s)").arg(count));
    return true; // it was not there: gone, as asked
}

bool ReadRevision(RepositoryStore& store, const QString& catalogReference, const QString& id,
                  int& revision)
{
    revision = 0;
    QSqlQuery* query =
        store.exec(QStringLiteral("SELECT revision FROM items WHERE catalog_ref = ? AND id = ?"),
                   {text(catalogReference), text(id)});
    if (!query)
        return false;
    if (query->next())
        revision = query->value(0).toInt();
    return true;
}

} // namespace Repository
