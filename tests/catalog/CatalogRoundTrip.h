#pragma once

// What a catalog holds, as text, and the round trip every loadable catalog file must
// survive: read, write, read again, same catalog. Shared by the catalog tests and the
// catalog reader's fuzz target.

#include "catalog/Catalog.h"

#include <QStringList>

namespace CatalogTest
{

using namespace ZEVGis::Data;

inline void dumpItem(CCatalogItem& item, int depth, QStringList& out)
{
    out << QStringLiteral("%1%2|%3|m%4|g%5|o%6|d%7|pic=%8|tpl=%9|parent=%10")
               .arg(QString(depth, u' '), item.GetGUID(), item.GetName())
               .arg(item.GetMsgName())
               .arg(item.IsGroup())
               .arg(item.GetOrd())
               .arg(item.GetIsDefault())
               .arg(item.GetPictureRef(), item.GetTemplateName(), item.GetParentItemGuid());
    if (const auto properties = item.GetProperties()) {
        for (const auto& category : properties->categories()) {
            out << QStringLiteral("%1  [%2]").arg(QString(depth, u' '), category->GetName());
            for (const auto& p : category->GetPropertyExVector())
                out << QStringLiteral("%1    %2=%3 (%4) cap=%5 pic=%6 ro=%7 choices=%8")
                           .arg(QString(depth, u' '), p->GetTag(), p->GetValue().ToString(),
                                dataTypeName(p->GetValue().GetType()), p->GetCaption(), p->GetPictureRef())
                           .arg(p->IsReadOnly())
                           .arg(p->GetChoices().join(u'|'));
        }
    }
    std::vector<boost::shared_ptr<CCatalogItem>> subs;
    item.GetSortedSubItems(subs);
    for (const auto& sub : subs)
        dumpItem(*sub, depth + 1, out);
}

// Everything a catalog holds, in display order, then every item by GUID with its parent:
// two catalogs with the same dump hold the same.
inline QString dump(CCatalog& catalog)
{
    QStringList out{QStringLiteral("ref=%1 items=%2").arg(catalog.GetReference()).arg(catalog.GetAllElementsMap()->size())};
    std::vector<boost::shared_ptr<CCatalogItem>> roots;
    catalog.GetSortedRootElements(roots);
    for (const auto& root : roots)
        dumpItem(*root, 0, out);
    for (const auto& [guid, item] : *catalog.GetAllElementsMap()) {
        const auto parent = item->GetParentItem();
        out << QStringLiteral("%1 -> %2").arg(guid, parent ? parent->GetGUID() : QStringLiteral("(root)"));
    }
    return out.join(u'\n');
}

// Empty when `bytes` do not load, or load and come back as the same catalog after a write
// and a read; else what differs.
inline QString roundTripProblem(const QByteArray& bytes)
{
    CCatalog first;
    if (!first.ParseXMLBytes(bytes))
        return QString();
    const QByteArray written = first.GetXMLBytes();
    CCatalog second;
    if (!second.ParseXMLBytes(written))
        return QStringLiteral("the written catalog does not load: %1\n%2")
            .arg(second.ParseError(), QString::fromUtf8(written.left(4000)));
    const QStringList before = dump(first).split(u'\n');
    const QStringList after = dump(second).split(u'\n');
    for (qsizetype i = 0; i < qMax(before.size(), after.size()); ++i) {
        const QString a = before.value(i, QStringLiteral("(nothing)"));
        const QString b = after.value(i, QStringLiteral("(nothing)"));
        if (a != b)
            return QStringLiteral("line %1 of the dump differs:\n read:    %2\n re-read: %3").arg(i + 1).arg(a, b);
    }
    // Written again, the file must not change any more.
    if (second.GetXMLBytes() != written)
        return QStringLiteral("a second write differs from the first");
    return QString();
}

} // namespace CatalogTest
