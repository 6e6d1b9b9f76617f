#include "tools/ImpexCommands.h"

#include "catalog/CatalogItemXml.h"
#include "catalog/Category.h"
#include "catalog/PropertiesEx.h"
#include "catalog/PropertyEx.h"
#include "catalog/SafeFileWrite.h"
#include "impex/ImpexTransfers.h"
#include "tools/CommandSupport.h"

#include <algorithm>
#include <map>
#include <set>

using namespace ZEVGis::Data;
using ZEVGis::Impex::ItemPtr;

namespace ZevxTool
{

namespace
{

// Catalog REF of the store, or null after saying why.
boost::shared_ptr<CCatalog> storeCatalog(const QString& reference, QTextStream& err)
{
    const auto metadata = findCatalog(reference, err);
    return metadata ? loadCatalog(*metadata, err) : nullptr;
}

// Every group of `catalog`, parents before their sub-groups, in the trees' order.
std::vector<ItemPtr> allGroups(CCatalog& catalog)
{
    std::vector<ItemPtr> roots;
    catalog.GetSortedRootElements(roots);
    std::vector<ItemPtr> groups;
    std::vector<ItemPtr> pending(roots.rbegin(), roots.rend());
    std::vector<ItemPtr> subItems;
    while (!pending.empty()) {
        const ItemPtr item = pending.back();
        pending.pop_back();
        if (!item->IsGroup())
            continue;
        groups.push_back(item);
        subItems.clear();
        item->GetSortedSubItems(subItems);
        pending.insert(pending.end(), subItems.rbegin(), subItems.rend());
    }
    return groups;
}

// The entries named by `guids` in `catalog` (every group when none); false after saying why
// one cannot go: unknown, or an item outside any group, which the dialog cannot move either.
bool selectEntries(CCatalog& catalog, const QStringList& guids, const QString& where,
                   std::vector<ItemPtr>& entries, QTextStream& err)
{
    if (guids.isEmpty()) {
        entries = allGroups(catalog);
        return true;
    }
    for (const QString& guid : guids) {
        const ItemPtr item = catalog.GetItembyGuid(guid);
        if (!item) {
            fail(err, "no entry " + guid + " in " + where);
            return false;
        }
        if (!item->IsGroup() && !item->GetParentItem()) {
            fail(err, guid + " is an item outside any group: it goes only with a group");
            return false;
        }
        entries.push_back(item);
    }
    return true;
}

std::map<QString, QString> propertyValues(CCatalogItem& item)
{
    std::map<QString, QString> values;
    if (const auto properties = item.GetProperties())
        for (const auto& category : properties->categories())
            for (const auto& property : category->GetPropertyExVector())
                if (property)
                    values[property->GetTag()] = property->GetValue().ToString();
    return values;
}

// The fields in which `a` and `b` differ, properties by tag.
QStringList differingFields(CCatalogItem& a, CCatalogItem& b)
{
    QStringList fields;
    const auto check = [&](bool same, const char* field) {
        if (!same)
            fields << QString::fromLatin1(field);
    };
    check(a.GetName() == b.GetName(), "name");
    check(a.GetMsgName() == b.GetMsgName(), "message number");
    check(a.IsGroup() == b.IsGroup(), "group");
    check(a.GetOrd() == b.GetOrd(), "order");
    check(a.GetIsDefault() == b.GetIsDefault(), "default");
    check(a.GetPictureRef() == b.GetPictureRef(), "picture");
    check(a.GetTemplateName() == b.GetTemplateName(), "template");
    check(a.GetParentItemGuid() == b.GetParentItemGuid(), "parent");
    std::map<QString, QString> left = propertyValues(a);
    const std::map<QString, QString> right = propertyValues(b);
    for (const auto& [tag, value] : right) {
        const auto it = left.find(tag);
        if (it == left.end() || it->second != value)
            fields << tag;
        if (it != left.end())
            left.erase(it);
    }
    for (const auto& [tag, value] : left)
        fields << tag;
    // Captions, choices, categories: the item's XML tells what the list above does not.
    if (fields.isEmpty() && CatalogItemToXml(a) != CatalogItemToXml(b))
        fields << QStringLiteral("property details");
    return fields;
}

// The items an import of `entry` looks at: a group with its direct sub-items, an item with
// its parent group.
std::vector<ItemPtr> consideredBy(const ItemPtr& entry)
{
    if (!entry->IsGroup())
        return {entry->GetParentItem(), entry};
    std::vector<ItemPtr> items{entry};
    std::vector<ItemPtr> subItems;
    entry->GetSortedSubItems(subItems);
    items.insert(items.end(), subItems.begin(), subItems.end());
    return items;
}

int reportDryRun(CCatalog& local, const std::vector<ItemPtr>& entries, QTextStream& out)
{
    int added = 0, unchanged = 0, different = 0;
    std::set<QString> seen;
    for (const ItemPtr& entry : entries)
        for (const ItemPtr& item : consideredBy(entry)) {
            if (!item || !seen.insert(item->GetGUID()).second)
                continue;
            const QString name = item->GetName() + ' ' + item->GetGUID();
            const ItemPtr there = local.GetItembyGuid(item->GetGUID());
            if (!there) {
                ++added;
                out << "would be added: " << name << '\n';
                continue;
            }
            const QStringList fields = differingFields(*there, *item);
            if (fields.isEmpty()) {
                ++unchanged;
                out << "already there unchanged: " << name << '\n';
            } else {
                ++different;
                out << "already there with different content: " << name << " (" << fields.join(", ")
                    << ")\n";
            }
        }
    out << added << " would be added, " << unchanged << " already there unchanged, " << different
        << " already there with different content\n" << Qt::flush;
    return 0;
}

} // namespace

int exportEntries(const QString& reference, const QString& file, const QStringList& guids,
                  QTextStream& out, QTextStream& err)
{
    const auto local = storeCatalog(reference, err);
    if (!local)
        return 1;
    std::vector<ItemPtr> entries;
    if (!selectEntries(*local, guids, "catalog " + reference, entries, err))
        return 1;
    CCatalog exported;
    exported.SetReference(local->GetReference());
    size_t copies = 0;
    for (const ItemPtr& entry : entries)
        copies += ZEVGis::Impex::CopyIntoCatalog(exported, *entry, true).size();
    const QString path = ZEVGis::Impex::WithXmlExtension(file);
    QString why;
    if (!WriteFileSafely(path, exported.GetXMLBytes(), why))
        return fail(err, why);
    out << "exported " << copies << " entries of " << local->GetReference() << " to " << path << '\n'
        << Qt::flush;
    return 0;
}

int importEntries(const QString& reference, const QString& file, const QStringList& guids,
                  bool dryRun, QTextStream& out, QTextStream& err)
{
    const auto local = storeCatalog(reference, err);
    if (!local)
        return 1;
    QString why;
    const auto source = ZEVGis::Impex::ReadCatalogFile(file, why);
    if (!source)
        return fail(err, file + ": not read as a catalog: " + why);
    if (source->GetReference() != local->GetReference())
        return fail(err, file + " holds catalog \"" + source->GetReference() + "\", not \"" +
                             local->GetReference() + "\"");
    std::vector<ItemPtr> entries;
    if (!selectEntries(*source, guids, file, entries, err))
        return 1;
    if (dryRun)
        return reportDryRun(*local, entries, out);

    size_t copies = 0;
    for (const ItemPtr& entry : entries)
        copies += ZEVGis::Impex::CopyIntoCatalog(*local, *entry, true).size();
    if (!saveCatalog(local->GetReference(), err))
        return 1;
    out << "imported " << copies << " entries into " << local->GetReference() << '\n' << Qt::flush;
    return 0;
}

} // namespace ZevxTool
