#pragma once

#include "catalog/Catalog.h"
#include "catalog/CatalogItemTemplate.h"

#include <QString>
#include <boost/shared_ptr.hpp>
#include <vector>

// A catalog store on disk for the editor's tests: a registry and its catalog files, written
// into a folder the test owns, and the catalog manager pointed at it.
class EditorTestStore
{
public:
    struct Entry
    {
        QString reference;
        QString nameUI;
        int hidden = 0;
        int drawingVersion = 0;
        int maxDepth = 3;
        int allowDefault = 0;
        int disableNewItems = 0;
        boost::shared_ptr<ZEVGis::Data::CCatalog> catalog; // null: an empty catalog
        std::vector<boost::shared_ptr<ZEVGis::Data::CCatalogItemTemplate>> templates;
    };

    explicit EditorTestStore(const QString& root);

    void add(const Entry& entry) { m_entries.push_back(entry); }
    // Writes the registry and every catalog, then configures the catalog manager on the
    // store (dropping whatever it had cached). False when a file could not be written.
    bool write();
    // Points a fresh manager at the store again: everything is read from disk anew.
    void reopen() const;

    QString root() const { return m_root; }
    QString drawingPath() const;
    // The bytes of a catalog's file as they are on disk now.
    QByteArray catalogFileBytes(const QString& reference) const;

private:
    QString fileNameOf(const Entry& entry) const;

    QString m_root;
    std::vector<Entry> m_entries;
};
