#pragma once

// Small catalogs for the catalog library's tests.

#include "catalog/Catalog.h"
#include "catalog/SafeFileWrite.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <boost/make_shared.hpp>

namespace CatalogTest
{

using namespace ZEVGis::Data;

inline boost::shared_ptr<CPropertiesEx> properties(
    std::initializer_list<std::pair<QString, std::vector<CPropertyEx>>> categories)
{
    auto result = boost::make_shared<CPropertiesEx>();
    for (const auto& [name, list] : categories) {
        auto category = boost::make_shared<CCategory>(name);
        for (const CPropertyEx& property : list)
            category->AddPropertyEx(boost::make_shared<CPropertyEx>(property));
        result->AddCategory(category);
    }
    return result;
}

inline CPropertyEx prop(const QString& tag, const CDataBox& value)
{
    return CPropertyEx(tag, value);
}

// Makes an item (a group when `group`), registers it in `catalog` under `parent`.
inline boost::shared_ptr<CCatalogItem> add(CCatalog& catalog, const QString& guid,
                                           const QString& name, bool group,
                                           boost::shared_ptr<CCatalogItem> parent = {}, int ord = 0)
{
    auto item = boost::make_shared<CCatalogItem>();
    item->SetGUID(guid);
    item->SetName(name);
    item->SetIsGroup(group);
    item->SetOrd(ord);
    if (parent) {
        item->SetParentItem(parent);
        parent->AddSubItem(item);
    }
    catalog.AddItem(item);
    return item;
}

inline QByteArray readAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline bool writeAll(const QString& path, const QByteArray& bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QString why;
    if (WriteFileSafely(path, bytes, why))
        return true;
    qWarning().noquote() << why;
    return false;
}

// True when this process can write into a folder it made read-only (it runs as root).
inline bool writesIgnorePermissions(const QString& folder)
{
    QFile probe(folder + QStringLiteral("/.probe"));
    const bool wrote = probe.open(QIODevice::WriteOnly);
    probe.remove();
    return wrote;
}

} // namespace CatalogTest
