#include "tests/editor/EditorDialogFixture.h"

#include "controls/PropertyGridModel.h"
#include "controls/PropertyGridWidget.h"
#include "editor/CatalogEditorIds.h"
#include "editor/CatalogTreeWidget.h"
#include "tests/editor/CatalogBuilder.h"
#include "tests/support/FindControl.h"

#include <QAbstractButton>
#include <QLineEdit>
#include <QtTest>
#include <boost/make_shared.hpp>

using namespace ZEVGis;
using namespace ZEVGis::Data;
using ZEVGis::Editor::CatalogTreeRowItem;
namespace Ids = ZEVGis::Editor::Ids;


boost::shared_ptr<CCatalog> cablesCatalog()
{
    CatalogBuilder b;
    b.catalog().SetReference("CABLES");
    auto lv = b.group("Low voltage", {}, 2, "{A-LV}");
    auto c16 = b.item("Cable 4x16", lv, 0, "{A-16}");
    auto c25 = b.item("Cable 4x25", lv, 1, "{A-25}");
    auto mv = b.group("Medium voltage", {}, 1, "{B-MV}");
    auto copper = b.group("Copper", mv, 0, "{B-CU}");
    auto cu95 = b.item("Cu 95", copper, 0, "{B-95}");
    b.group("Aluminium", mv, 1, "{B-AL}");
    auto loose = b.item("Loose item", {}, 0, "{C-LOOSE}");
    CatalogBuilder::setProperties(c16, {{"CATALOGITEM_NAME", "Cable 4x16"},
                                        {"LSEQUIP_TYPE", "CABLE_LV"},
                                        {"CROSS_SECTION", "16"}});
    CatalogBuilder::setProperties(c25, {{"CATALOGITEM_NAME", "Cable 4x25"},
                                        {"LSEQUIP_TYPE", "CABLE_LV"},
                                        {"CROSS_SECTION", "25"}});
    CatalogBuilder::setProperties(cu95, {{"CATALOGITEM_NAME", "Cu 95"}, {"LSEQUIP_TYPE", "CABLE_MV"}});
    CatalogBuilder::setProperties(loose, {{"CATALOGITEM_NAME", "Loose item"}});
    c16->SetIsDefault(1);
    return b.shared();
}

boost::shared_ptr<CCatalog> smallCatalog(const QString& reference, const QString& groupName)
{
    CatalogBuilder b;
    b.catalog().SetReference(reference);
    auto group = b.group(groupName, {}, 0, "{G-" + reference + "}");
    auto item = b.item(groupName + " item", group, 0, "{I-" + reference + "}");
    CatalogBuilder::setProperties(item, {{"CATALOGITEM_NAME", groupName + " item"}});
    return b.shared();
}

EditorTestStore::Entry entry(const QString& reference, const QString& name,
                             boost::shared_ptr<CCatalog> catalog, int hidden)
{
    EditorTestStore::Entry e;
    e.reference = reference;
    e.nameUI = name;
    e.hidden = hidden;
    e.catalog = catalog;
    return e;
}

QTreeWidgetItem* rowAt(QTreeWidget* tree, const QString& path)
{
    QTreeWidgetItem* row = tree->topLevelItem(0);
    if (path.isEmpty())
        return row;
    for (const QString& name : path.split('/'))
    {
        QTreeWidgetItem* next = nullptr;
        for (int i = 0; row && i < row->childCount() && !next; ++i)
            if (row->child(i)->text(0) == name)
                next = row->child(i);
        row = next;
    }
    return row;
}

QStringList childTexts(QTreeWidgetItem* row)
{
    QStringList texts;
    for (int i = 0; row && i < row->childCount(); ++i)
        texts << row->child(i)->text(0);
    return texts;
}

QStringList pathsOf(QTreeWidgetItem* row, const QString& prefix, const QString& path)
{
    QStringList found;
    for (int i = 0; row && i < row->childCount(); ++i)
    {
        const QString childPath = path.isEmpty() ? row->child(i)->text(0) : path + '/' + row->child(i)->text(0);
        if (row->child(i)->text(0).startsWith(prefix))
            found << childPath;
        found << pathsOf(row->child(i), prefix, childPath);
    }
    return found;
}

QPoint centreOf(QTreeWidget* tree, QTreeWidgetItem* row)
{
    for (QTreeWidgetItem* up = row ? row->parent() : nullptr; up; up = up->parent())
        up->setExpanded(true);
    return tree->visualItemRect(row).center();
}

int imageOf(QTreeWidgetItem* row)
{
    return row && row->type() == CatalogTreeRowItem::RowType
               ? static_cast<CatalogTreeRowItem*>(row)->imageIndex()
               : -1;
}

void EditorDialogFixture::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
    Host::HostServices::install(&m_host);
}

void EditorDialogFixture::init()
{
    // Popup menus cannot grab the keyboard offscreen; that alone is no fault.
    QTest::failOnWarning(QRegularExpression("^(?!This plugin does not support).*"));
    m_host.clear();
    m_host.setCtrlPressed(false);
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
    m_store = std::make_unique<EditorTestStore>(m_dir->path());
}

void EditorDialogFixture::cleanup()
{
    m_store.reset();
    m_dir.reset();
}

void EditorDialogFixture::writeStore(const std::vector<EditorTestStore::Entry>& entries)
{
    for (const auto& e : entries)
        m_store->add(e);
    QVERIFY(m_store->write());
}

void EditorDialogFixture::writeDefaultStore()
{
    auto cables = entry("CABLES", "Cables", cablesCatalog());
    cables.drawingVersion = 1;
    cables.allowDefault = 1;
    cables.maxDepth = 2;
    auto tmpl = boost::make_shared<CCatalogItemTemplate>("Cable", 1, cablesCatalog()->GetItembyGuid("{A-25}"));
    cables.templates = {boost::make_shared<CCatalogItemTemplate>("Retired", -1, nullptr), tmpl};
    auto locked = entry("LOCKED", "Locked", smallCatalog("LOCKED", "Fixed"));
    locked.disableNewItems = 1;
    locked.templates = {boost::make_shared<CCatalogItemTemplate>(
        "Fixed", 1, smallCatalog("LOCKED", "Fixed")->GetItembyGuid("{I-LOCKED}"))};
    writeStore({cables, entry("POLES", "Poles", smallCatalog("POLES", "Wood")), locked});
}

std::unique_ptr<CCatalogEditorDlg> EditorDialogFixture::openDialog(const QString& reference,
                                                                    int showHidden)
{
    auto dlg = std::make_unique<CCatalogEditorDlg>();
    dlg->SetCatalogReference(reference);
    dlg->SetShowHiddenCatalogs(showHidden);
    dlg->show();
    dlg->activateWindow();
    if (!QTest::qWaitForWindowActive(dlg.get()))
        qWarning("the dialog did not become active");
    return dlg;
}

void EditorDialogFixture::focusAndSelect(CCatalogEditorDlg& dlg, int treeId, const QString& path)
{
    auto* tree = findControl<QTreeWidget>(&dlg, treeId);
    QVERIFY(tree);
    tree->setFocus(Qt::MouseFocusReason);
    QTreeWidgetItem* row = rowAt(tree, path);
    QVERIFY2(row, qPrintable(path));
    tree->setCurrentItem(row);
}

QStringList EditorDialogFixture::enabledEditButtons(CCatalogEditorDlg& dlg) const
{
    QStringList on;
    for (int id : {Ids::BtnAddGroup, Ids::BtnDelete, Ids::BtnNew, Ids::BtnNewItems, Ids::BtnUp,
                   Ids::BtnDown, Ids::BtnSort, Ids::BtnSetDefault})
    {
        auto* button = findControl<QAbstractButton>(&dlg, id);
        if (button && button->isEnabled())
            on << QString::number(id);
    }
    return on;
}

void EditorDialogFixture::dragRow(QTreeWidget* tree, const QPoint& start, const QPoint& end,
                                  bool ctrl)
{
    QWidget* viewport = tree->viewport();
    QTest::mousePress(viewport, Qt::LeftButton, {}, start);
    QMouseEvent move(QEvent::MouseMove, end, viewport->mapToGlobal(end), Qt::NoButton,
                     Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(viewport, &move);
    m_host.setCtrlPressed(ctrl);
    QTest::mouseRelease(viewport, Qt::LeftButton, {}, end);
    m_host.setCtrlPressed(false);
}

void EditorDialogFixture::editInGrid(CCatalogEditorDlg& dlg, const QString& tag, const QString& text)
{
    auto* grid = findControl<PropertyGridWidget>(&dlg, Ids::Grid);
    const QModelIndex index = grid->model()->indexOfTag(tag);
    QVERIFY(index.isValid());
    grid->view()->setFocus();
    grid->view()->setCurrentIndex(index);
    QTest::keyClick(grid->view(), Qt::Key_F2);
    auto* editor = qobject_cast<QLineEdit*>(QApplication::focusWidget());
    QVERIFY(editor);
    editor->selectAll();
    QTest::keyClicks(editor, text);
    QTest::keyClick(editor, Qt::Key_Return);
    QCoreApplication::processEvents();
}
