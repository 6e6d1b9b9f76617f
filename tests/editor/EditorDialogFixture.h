#pragma once

#include "catalog/Catalog.h"
#include "editor/CatalogEditorDlg.h"
#include "host/ScriptedHost.h"
#include "tests/editor/EditorTestStore.h"

#include <QObject>
#include <QPoint>
#include <QStringList>
#include <QTemporaryDir>
#include <boost/shared_ptr.hpp>
#include <memory>
#include <vector>

class QTreeWidget;
class QTreeWidgetItem;

// Cables: root map order (by GUID) is Low voltage, Medium voltage, Loose item; order
// numbers put them the other way round.
//   Low voltage (ord 2)      { Cable 4x16 (default, CABLE_LV), Cable 4x25 (CABLE_LV) }
//   Medium voltage (ord 1)   { Copper { Cu 95 (CABLE_MV) }, Aluminium {} }
//   Loose item (ord 0)
boost::shared_ptr<ZEVGis::Data::CCatalog> cablesCatalog();
// One group `groupName` holding one item "<groupName> item".
boost::shared_ptr<ZEVGis::Data::CCatalog> smallCatalog(const QString& reference,
                                                       const QString& groupName);
EditorTestStore::Entry entry(const QString& reference, const QString& name,
                             boost::shared_ptr<ZEVGis::Data::CCatalog> catalog, int hidden = 0);

// The row at `path` ("Group/Item") below the root row; the root row for an empty path.
QTreeWidgetItem* rowAt(QTreeWidget* tree, const QString& path);
QStringList childTexts(QTreeWidgetItem* row);
// Paths of the rows below `row` whose text starts with `prefix`.
QStringList pathsOf(QTreeWidgetItem* row, const QString& prefix, const QString& path = QString());
// Where a row is shown in the tree's viewport (its parents opened first).
QPoint centreOf(QTreeWidget* tree, QTreeWidgetItem* row);
// The image index of a catalog row; -1 for another row.
int imageOf(QTreeWidgetItem* row);

// The editor dialog's tests share this: a scripted host, a catalog store in a temporary
// folder, and ways to open the dialog and select rows as a user would.
class EditorDialogFixture : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

protected:
    void writeStore(const std::vector<EditorTestStore::Entry>& entries);
    // CABLES (drawing copy, defaults allowed, depth 2, templates "Retired" (-1) and
    // "Cable"), POLES, and LOCKED (new items disabled, template "Fixed").
    void writeDefaultStore();
    std::unique_ptr<CCatalogEditorDlg> openDialog(const QString& reference = QString(),
                                                   int showHidden = 0);
    void focusAndSelect(CCatalogEditorDlg& dlg, int treeId, const QString& path);
    QStringList enabledEditButtons(CCatalogEditorDlg& dlg) const;
    // Drags the row at `from` with the mouse and drops it at `end` (viewport coordinates),
    // Ctrl held at the drop when `ctrl`.
    void dragRow(QTreeWidget* tree, const QPoint& start, const QPoint& end, bool ctrl);
    // Types `text` into the grid's editor of the property with `tag` and presses Enter.
    void editInGrid(CCatalogEditorDlg& dlg, const QString& tag, const QString& text);

    ZEVGis::Host::ScriptedHost m_host;
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<EditorTestStore> m_store;
};
