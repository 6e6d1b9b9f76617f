#pragma once

#include "catalog/CatalogItem.h"
#include "repository/NetCatalogueItem.h"

#include <QString>
#include <boost/shared_ptr.hpp>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Repository
{

class RepositoryStore;

// One record as it is sent: the columns the trees need and the item's own XML.
struct RecordRow
{
    QString id;
    QString parentId; // empty at the top
    QString name;
    int isGroup = 0;
    int ord = 0;
    QString content;
};

// The item (and, when asked, every item below it, each once) as records, sorted by GUID
// so that two editors sending overlapping trees lock rows in the same order.
std::vector<RecordRow> RecordsOf(ZEVGis::Data::CCatalogItem& item, bool withDescendants);

// Records this client wrote (or found unchanged) during one user action, as a 128-bit digest
// of each record's columns and content, by catalog and GUID.
class WrittenRecords
{
public:
    void remember(const QString& catalogReference, const std::vector<RecordRow>& records);
    // True when every record is remembered with exactly these columns and content.
    bool holdAll(const QString& catalogReference, const std::vector<RecordRow>& records) const;
    void forget(const QString& catalogReference, const QString& id);
    void clear() { m_digests.clear(); }

private:
    using Digest = std::pair<size_t, size_t>;
    static Digest digestOf(const RecordRow& row);
    static QString keyOf(const QString& catalogReference, const QString& id);

    std::unordered_map<QString, Digest> m_digests;
};

// The statements of each call, run inside RepositoryStore::run.
// The catalog's row: its display name (kept when `catalogName` is empty).
bool WriteCatalogRow(RepositoryStore& store, const QString& catalogReference,
                     const QString& catalogName);
bool WriteRecords(RepositoryStore& store, const QString& catalogReference,
                  const std::vector<RecordRow>& records);
bool ReadChildren(RepositoryStore& store, const QString& catalogReference, const QString& parentId,
                  std::vector<boost::shared_ptr<CNetCatalogueItem>>& out);
bool ReadItem(RepositoryStore& store, const QString& catalogReference, const QString& id,
              boost::shared_ptr<ZEVGis::Data::CCatalogItem>& item);
bool DeleteRecord(RepositoryStore& store, const QString& catalogReference, const QString& id);
bool ReadRevision(RepositoryStore& store, const QString& catalogReference, const QString& id,
                  int& revision);

} // namespace Repository
