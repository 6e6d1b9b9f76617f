// The import/export dialog driven as a user drives it, by control id, on a catalog store in
// a temporary folder, with file dialogs and alerts scripted.
#include "catalog/CatalogManager.h"
#include "catalog/ModuleConfiguration.h"
#include "catalog/SafeFileWrite.h"
#include "controls/ClrTreeCtrl.h"
#include "impex/DlgCatalogImpex.h"
#include "editor/CatalogEditorIds.h"
#include "impex/ImpexIds.h"
#include "tests/editor/CatalogBuilder.h"
#include "tests/editor/EditorDialogFixture.h"
#include "tests/impex/ImpexDialogDriver.h"
#include "tests/support/FindControl.h"
#include "xml/XmlDocument.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QUndoStack>
#include <QtTest>
#include <boost/make_shared.hpp>
#include <functional>

using namespace ZEVGis;
using Data::CCatalog;
using Data::CCatalogManager;
namespace Ids = ZEVGis::Impex::Ids;

namespace
{

QString Msg(unsigned id)
{
    return CModuleConfiguration::Instance()->GetMsg(id);
}

int ImageOf(QTreeWidgetItem* row)
{
    return CClrTreeCtrl::Row(row) ? CClrTreeCtrl::Row(row)->image() : -1;
}

// A CABLES catalog file holding what `fill` builds.
QString WriteCatalogFile(const QString& path, const QString& reference,
                         const std::function<void(CatalogBuilder&)>& fill)
{
    CatalogBuilder b;
    b.catalog().SetReference(reference);
    fill(b);
    QString why;
    return Data::WriteFileSafely(path, b.catalog().GetXMLBytes(), why) ? path : QString();
}

} // namespace

class TestDlgCatalogImpex : public EditorDialogFixture
{
    Q_OBJECT

private slots:
    void opensInFileMode_data();
    void opensInFileMode();
    void withoutLocalCatalogEndsCancelled();
    void exportThenImportGivesBackWhatWasExported();
    void takeBack_data();
    void takeBack();
    void browseRefusesOtherOrBrokenFiles_data();
    void browseRefusesOtherOrBrokenFiles();
    void okRefusesPathsThatCannotBeWritten_data();
    void okRefusesPathsThatCannotBeWritten();
    void failedWriteTellsWhyAndKeepsDialogOpen();
    void tabReachesEveryControlBothWays();
    void editorImportReloadsTreeWithoutSaving();
    void editorExportChangesNothing();
    void editorUndoesOnlyAnImportEndedWithOk_data();
    void editorUndoesOnlyAnImportEndedWithOk();
    void radioTextsFit_data();
    void radioTextsFit();
    void screenshots_data();
    void screenshots();

private:
    std::unique_ptr<CDlgCatalogImpex> openImpex(int direction,
                                                boost::shared_ptr<CCatalog> local = {});
};

std::unique_ptr<CDlgCatalogImpex> TestDlgCatalogImpex::openImpex(int direction,
                                                                 boost::shared_ptr<CCatalog> local)
{
    auto dlg = std::make_unique<CDlgCatalogImpex>();
    dlg->SetParameters(direction, "CABLES");
    dlg->SetLocalCatalog(local ? local : CCatalogManager::Instance()->GetCatalog("CABLES", 1));
    dlg->show();
    if (!QTest::qWaitForWindowExposed(dlg.get()))
        qWarning("the dialog was not shown");
    return dlg;
}

void TestDlgCatalogImpex::opensInFileMode_data()
{
    QTest::addColumn<int>("direction");
    QTest::addColumn<unsigned>("title");
    QTest::newRow("export") << int(CDlgCatalogImpex::Export) << 8531u;
    QTest::newRow("import") << int(CDlgCatalogImpex::Import) << 8530u;
}

void TestDlgCatalogImpex::opensInFileMode()
{
    QFETCH(int, direction);
    QFETCH(unsigned, title);
    writeDefaultStore();
    const auto dlg = openImpex(direction);
    QCOMPARE(dlg->windowTitle(), Msg(title));
    QCOMPARE(dlg->CatalogName(), QStringLiteral("Cables"));

    QTreeWidgetItem* right = rowAt(Tree(dlg.get(), Ids::TreeTarget), "");
    QCOMPARE(right->text(0), Msg(350));
    QCOMPARE(ImageOf(right), 8);
    QCOMPARE(right->childCount(), 0);
    QTreeWidgetItem* left = rowAt(Tree(dlg.get(), Ids::TreeLocal), "");
    QCOMPARE(left->text(0), Msg(350) + " - Disk");
    QCOMPARE(ImageOf(left), 7);
    // The left top level in order-number order; below it groups 0, items 6.
    QCOMPARE(childTexts(left), (QStringList{"Loose item", "Medium voltage", "Low voltage"}));
    QCOMPARE(ImageOf(rowAt(Tree(dlg.get(), Ids::TreeLocal), "Loose item")), 0);
    QCOMPARE(ImageOf(rowAt(Tree(dlg.get(), Ids::TreeLocal), "Medium voltage/Copper")), 0);
    QCOMPARE(ImageOf(rowAt(Tree(dlg.get(), Ids::TreeLocal), "Medium voltage/Copper/Cu 95")), 6);

    QVERIFY(findControl<QRadioButton>(dlg.get(), Ids::RadioFile)->isChecked());
    QCOMPARE(findControl<QRadioButton>(dlg.get(), Ids::RadioFile)->text(), Msg(250));
    QCOMPARE(findControl<QRadioButton>(dlg.get(), Ids::RadioRepository)->text(), Msg(10276));
    QVERIFY(findControl<QLineEdit>(dlg.get(), Ids::EditPath)->isEnabled());
    QVERIFY(findControl<QPushButton>(dlg.get(), Ids::BtnBrowse)->isEnabled());
    QVERIFY(!findControl<QPushButton>(dlg.get(), Ids::BtnDel)->isEnabled());
    QCOMPARE(findControl<QLabel>(dlg.get(), Ids::LocalCaption)->text(), Msg(350));
    QCOMPARE(findControl<QLabel>(dlg.get(), Ids::TargetCaption)->text(), Msg(250));
    QCOMPARE(findControl<QPushButton>(dlg.get(), Ids::Ok)->text(), Msg(60));
    QCOMPARE(findControl<QPushButton>(dlg.get(), Ids::Close)->text(), Msg(67));
    for (int id : {Ids::BtnAdd, Ids::BtnRemove, Ids::BtnBrowse, Ids::BtnDel})
        QVERIFY(!findControl<QPushButton>(dlg.get(), id)->icon().isNull());
}

void TestDlgCatalogImpex::withoutLocalCatalogEndsCancelled()
{
    writeDefaultStore();
    CDlgCatalogImpex dlg;
    dlg.SetParameters(CDlgCatalogImpex::Export, "CABLES");
    QCOMPARE(dlg.exec(), int(QDialog::Rejected));
    QVERIFY(!dlg.isVisible());
}

void TestDlgCatalogImpex::exportThenImportGivesBackWhatWasExported()
{
    writeDefaultStore();
    const QString path = m_dir->filePath("export");
    {
        const auto dlg = openImpex(CDlgCatalogImpex::Export);
        Select(dlg.get(), Ids::TreeLocal, "Low voltage");
        Click(dlg.get(), Ids::BtnAdd);
        Select(dlg.get(), Ids::TreeLocal, "Medium voltage/Copper/Cu 95");
        Click(dlg.get(), Ids::BtnAdd);
        Click(dlg.get(), Ids::BtnAdd); // the same item again: no second copy

        CClrTreeCtrl* right = Tree(dlg.get(), Ids::TreeTarget);
        QCOMPARE(childTexts(rowAt(right, "")), (QStringList{"Low voltage", "Copper"}));
        QCOMPARE(childTexts(rowAt(right, "Low voltage")), (QStringList{"Cable 4x16", "Cable 4x25"}));
        QCOMPARE(childTexts(rowAt(right, "Copper")), QStringList{"Cu 95"});
        QCOMPARE(ImageOf(rowAt(right, "Copper")), 0);
        QCOMPARE(ImageOf(rowAt(right, "Copper/Cu 95")), 6);
        QCOMPARE(right->currentItem(), rowAt(right, "Copper/Cu 95"));
        QTreeWidgetItem* copy = rowAt(right, "Low voltage/Cable 4x25");
        QCOMPARE(copy->foreground(0).color(), QColor(0x00, 0xFC, 0x7C));
        QVERIFY(dlg->IsTransferred(copy));
        QCOMPARE(rowAt(Tree(dlg.get(), Ids::TreeLocal), "Low voltage/Cable 4x25")->foreground(0).color(),
                 QColor(0x80, 0x80, 0x80));

        m_host.queueSaveFileName(path);
        Click(dlg.get(), Ids::BtnBrowse);
        QCOMPARE(findControl<QLineEdit>(dlg.get(), Ids::EditPath)->text(), path + ".xml");
        Click(dlg.get(), Ids::Ok);
        QCOMPARE(m_host.alerts(), QStringList());
        QCOMPARE(dlg->result(), int(QDialog::Accepted));
    }
    CXmlDocument written;
    QVERIFY2(written.LoadFile(path + ".xml"), qPrintable(written.GetResult()));
    CCatalog exported;
    QVERIFY(exported.ParseXML(written.GetDocumentText()));
    QCOMPARE(exported.GetReference(), QStringLiteral("CABLES"));
    QCOMPARE(exported.GetAllElementsMap()->size(), size_t(5));

    // A second import of the file into an empty catalog of the same reference.
    auto empty = boost::make_shared<CCatalog>();
    empty->SetReference("CABLES");
    const auto dlg = openImpex(CDlgCatalogImpex::Import, empty);
    m_host.queueOpenFileName(path + ".xml");
    Click(dlg.get(), Ids::BtnBrowse);
    QCOMPARE(childTexts(rowAt(Tree(dlg.get(), Ids::TreeTarget), "")).size(), 2);
    for (const QString& entry : {"Low voltage", "Copper"})
    {
        Select(dlg.get(), Ids::TreeTarget, entry);
        Click(dlg.get(), Ids::BtnRemove);
    }
    QCOMPARE(empty->GetAllElementsMap()->size(), size_t(5));
    for (const auto& [guid, item] : *exported.GetAllElementsMap())
    {
        const auto imported = empty->GetItembyGuid(guid);
        QVERIFY2(imported, qPrintable(guid));
        QCOMPARE(imported->GetName(), item->GetName());
        QCOMPARE(imported->GetParentItemGuid(), item->GetParentItemGuid());
        QCOMPARE(imported->IsGroup(), item->IsGroup());
        QCOMPARE(imported->GetProperties()->GetCategoryVector()->size(),
                 item->GetProperties()->GetCategoryVector()->size());
    }
    QCOMPARE(childTexts(rowAt(Tree(dlg.get(), Ids::TreeLocal), "")).size(), 2);
}

void TestDlgCatalogImpex::takeBack_data()
{
    QTest::addColumn<int>("direction");
    QTest::addColumn<QString>("transfer");  // left path for export, right path for import
    QTest::addColumn<int>("takeBackTree");
    QTest::addColumn<QString>("takeBack");
    QTest::addColumn<bool>("removed");

    QTest::newRow("export: any entry of the file, copied or not")
        << int(CDlgCatalogImpex::Export) << "Low voltage" << int(Ids::TreeTarget)
        << "Low voltage/Cable 4x16" << true;
    QTest::newRow("import: an entry brought in while open")
        << int(CDlgCatalogImpex::Import) << "Imported" << int(Ids::TreeLocal) << "Imported"
        << true;
    QTest::newRow("import: an entry that was there before stays")
        << int(CDlgCatalogImpex::Import) << "Imported" << int(Ids::TreeLocal) << "Low voltage"
        << false;
}

void TestDlgCatalogImpex::takeBack()
{
    QFETCH(int, direction);
    QFETCH(QString, transfer);
    QFETCH(int, takeBackTree);
    QFETCH(QString, takeBack);
    QFETCH(bool, removed);
    writeDefaultStore();
    const QString file = WriteCatalogFile(m_dir->filePath("in.xml"), "CABLES", [](CatalogBuilder& b)
                                          { b.item("Imported item", b.group("Imported", {}, 9)); });
    const auto dlg = openImpex(direction);
    const auto local = CCatalogManager::Instance()->GetCatalog("CABLES", 1);
    if (direction == CDlgCatalogImpex::Import)
    {
        m_host.queueOpenFileName(file);
        Click(dlg.get(), Ids::BtnBrowse);
    }
    const int from = direction == CDlgCatalogImpex::Export ? Ids::TreeLocal : Ids::TreeTarget;
    Select(dlg.get(), from, transfer);
    Click(dlg.get(), direction == CDlgCatalogImpex::Export ? Ids::BtnAdd : Ids::BtnRemove);

    CClrTreeCtrl* tree = Tree(dlg.get(), takeBackTree);
    CClrTreeCtrl* other = Tree(dlg.get(), takeBackTree == Ids::TreeLocal ? Ids::TreeTarget : Ids::TreeLocal);
    const auto catalog = takeBackTree == Ids::TreeLocal ? local : dlg->FileCatalog();
    const QString guid = static_cast<const Data::CCatalogItem*>(
                             CClrTreeCtrl::GetItemData(rowAt(tree, takeBack)))->GetGUID();
    const QString counterpartPath = direction == CDlgCatalogImpex::Export ? "Low voltage/Cable 4x16" : "Imported";
    QVERIFY(CClrTreeCtrl::GetItemColor(rowAt(other, counterpartPath)) != 0);

    Select(dlg.get(), takeBackTree, takeBack);
    Click(dlg.get(), takeBackTree == Ids::TreeLocal ? Ids::BtnAdd : Ids::BtnRemove);
    QCOMPARE(rowAt(tree, takeBack) == nullptr, removed);
    QCOMPARE(catalog->GetItembyGuid(guid) == nullptr, removed);
    if (removed)
        QCOMPARE(CClrTreeCtrl::GetItemColor(rowAt(other, counterpartPath)), ColorRef(0));
}

void TestDlgCatalogImpex::browseRefusesOtherOrBrokenFiles_data()
{
    QTest::addColumn<QByteArray>("content"); // empty: a file that is not there
    QTest::addColumn<unsigned>("message");
    QTest::newRow("another catalog's file")
        << QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<catalog ref=\"POLES\" format=\"1\">"
                      "<i id=\"{P}\" n=\"Pole\" g=\"1\"/></catalog>\n")
        << 9079u;
    QTest::newRow("not well formed") << QByteArray("<catalog ref=\"CABLES\"><i></catalog>") << 70201u;
    QTest::newRow("not a catalog") << QByteArray("<?xml version=\"1.0\"?><registry/>") << 70201u;
    QTest::newRow("missing file") << QByteArray() << 70201u;
}

void TestDlgCatalogImpex::browseRefusesOtherOrBrokenFiles()
{
    QFETCH(QByteArray, content);
    QFETCH(unsigned, message);
    writeDefaultStore();
    const QString good = WriteCatalogFile(m_dir->filePath("good.xml"), "CABLES", [](CatalogBuilder& b)
                                          { b.group("Kept", {}, 1); });
    const QString bad = m_dir->filePath("bad.xml");
    QString why;
    if (!content.isEmpty())
        QVERIFY(Data::WriteFileSafely(bad, content, why));
    const auto dlg = openImpex(CDlgCatalogImpex::Import);
    m_host.queueOpenFileName(good);
    Click(dlg.get(), Ids::BtnBrowse);
    QTreeWidgetItem* keptRow = rowAt(Tree(dlg.get(), Ids::TreeTarget), "Kept");
    QVERIFY(keptRow);

    m_host.queueOpenFileName(bad);
    Click(dlg.get(), Ids::BtnBrowse);
    QCOMPARE(m_host.alerts().size(), 1);
    QVERIFY2(m_host.alerts().first().startsWith(Msg(message).split("%1").first()),
             qPrintable(m_host.alerts().first()));
    QCOMPARE(childTexts(rowAt(Tree(dlg.get(), Ids::TreeTarget), "")), QStringList{"Kept"});
    // The rows still point at live items: a transfer from them works.
    Select(dlg.get(), Ids::TreeTarget, "Kept");
    Click(dlg.get(), Ids::BtnRemove);
    QVERIFY(rowAt(Tree(dlg.get(), Ids::TreeLocal), "Kept"));
}

void TestDlgCatalogImpex::okRefusesPathsThatCannotBeWritten_data()
{
    QTest::addColumn<int>("direction");
    QTest::addColumn<QString>("path"); // relative to the test's folder; "" for none
    QTest::newRow("export, no path") << int(CDlgCatalogImpex::Export) << "";
    QTest::newRow("import, no path") << int(CDlgCatalogImpex::Import) << "";
    QTest::newRow("folder that does not exist") << int(CDlgCatalogImpex::Export) << "missing/out.xml";
}

void TestDlgCatalogImpex::okRefusesPathsThatCannotBeWritten()
{
    QFETCH(int, direction);
    QFETCH(QString, path);
    writeDefaultStore();
    const auto dlg = openImpex(direction);
    findControl<QLineEdit>(dlg.get(), Ids::EditPath)->setText(path.isEmpty() ? path : m_dir->filePath(path));
    Click(dlg.get(), Ids::Ok);
    QCOMPARE(m_host.alerts(), QStringList{Msg(61057)});
    QVERIFY(dlg->isVisible());
    QVERIFY(!QFileInfo::exists(m_dir->filePath("missing")));
}

void TestDlgCatalogImpex::failedWriteTellsWhyAndKeepsDialogOpen()
{
    writeDefaultStore();
    // The target is a folder: nothing can be put in its place.
    const QString path = m_dir->filePath("taken.xml");
    QVERIFY(QDir(m_dir->path()).mkdir("taken.xml"));
    QString why;
    QVERIFY(Data::WriteFileSafely(path + "/old.txt", "old", why));
    const QStringList filesBefore = QDir(m_dir->path()).entryList(QDir::Files | QDir::Hidden);
    const auto dlg = openImpex(CDlgCatalogImpex::Export);
    Select(dlg.get(), Ids::TreeLocal, "Low voltage");
    Click(dlg.get(), Ids::BtnAdd);
    findControl<QLineEdit>(dlg.get(), Ids::EditPath)->setText(path);
    Click(dlg.get(), Ids::Ok);
    QCOMPARE(m_host.alerts().size(), 1);
    QVERIFY2(m_host.alerts().first().contains("taken.xml"), qPrintable(m_host.alerts().first()));
    QVERIFY(dlg->isVisible());
    QVERIFY(QFileInfo(path).isDir());
    QCOMPARE(QDir(path).entryList(QDir::Files), QStringList{"old.txt"});
    // No temporary file is left behind.
    QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files | QDir::Hidden), filesBefore);
}

void TestDlgCatalogImpex::tabReachesEveryControlBothWays()
{
    writeDefaultStore();
    const auto dlg = openImpex(CDlgCatalogImpex::Export);
    dlg->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(dlg.get()));
    QList<int> expected;
    for (QWidget* w : dlg->findChildren<QWidget*>())
        if (controlId(w) > 0 && w->isEnabled() && w->focusPolicy() & Qt::TabFocus)
            expected << controlId(w);
    QVERIFY(expected.contains(Ids::TreeTarget));
    for (bool backwards : {false, true})
    {
        findControl<QWidget>(dlg.get(), Ids::Ok)->setFocus(Qt::TabFocusReason);
        QList<int> seen;
        for (int i = 0; i < 2 * expected.size(); ++i)
        {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab,
                            backwards ? Qt::ShiftModifier : Qt::NoModifier);
            const int id = controlId(QApplication::focusWidget());
            if (!seen.contains(id))
                seen << id;
        }
        for (int id : expected)
            QVERIFY2(seen.contains(id), qPrintable(QStringLiteral("%1 not reached%2")
                                                       .arg(id)
                                                       .arg(backwards ? " backwards" : "")));
    }
}

void TestDlgCatalogImpex::editorImportReloadsTreeWithoutSaving()
{
    writeDefaultStore();
    const QString file = WriteCatalogFile(m_dir->filePath("in.xml"), "CABLES", [](CatalogBuilder& b)
                                          { b.item("Imported item", b.group("Imported", {}, 9)); });
    const QByteArray before = m_store->catalogFileBytes("CABLES");
    const auto editor = openDialog("CABLES");
    m_host.queueOpenFileName(file);
    QString title;
    QTimer::singleShot(0, [&] {
        auto* dlg = qobject_cast<CDlgCatalogImpex*>(QApplication::activeModalWidget());
        QVERIFY(dlg);
        title = dlg->windowTitle();
        Click(dlg, Ids::BtnBrowse);
        Select(dlg, Ids::TreeTarget, "Imported");
        Click(dlg, Ids::BtnRemove);
        findControl<QLineEdit>(dlg, Ids::EditPath)->setText(file);
        Click(dlg, Ids::Ok);
    });
    Click(editor.get(), Editor::Ids::BtnImport);
    QCOMPARE(title, Msg(8530));
    QCOMPARE(m_host.alerts(), QStringList());
    QVERIFY(rowAt(findControl<QTreeWidget>(editor.get(), Editor::Ids::CatalogTree), "Imported/Imported item"));
    QCOMPARE(m_store->catalogFileBytes("CABLES"), before);
}

void TestDlgCatalogImpex::editorExportChangesNothing()
{
    writeDefaultStore();
    const QByteArray before = m_store->catalogFileBytes("CABLES");
    const auto editor = openDialog("CABLES");
    QString title;
    QTimer::singleShot(0, [&] {
        auto* dlg = qobject_cast<CDlgCatalogImpex*>(QApplication::activeModalWidget());
        QVERIFY(dlg);
        title = dlg->windowTitle();
        Select(dlg, Ids::TreeLocal, "Low voltage");
        Click(dlg, Ids::BtnAdd);
        Click(dlg, Ids::Close);
    });
    Click(editor.get(), Editor::Ids::BtnExport);
    QCOMPARE(title, Msg(8531));
    QCOMPARE(m_store->catalogFileBytes("CABLES"), before);
    QCOMPARE(childTexts(rowAt(findControl<QTreeWidget>(editor.get(), Editor::Ids::CatalogTree), "")).size(), 3);
}

void TestDlgCatalogImpex::editorUndoesOnlyAnImportEndedWithOk_data()
{
    QTest::addColumn<bool>("bringIn");
    QTest::addColumn<int>("button");
    QTest::addColumn<int>("undoSteps"); // after one edit made before the dialog

    QTest::newRow("brought in, OK: one more step") << true << int(Ids::Ok) << 2;
    // The entries stay in the catalog unseen; the edit before cannot be undone onto it.
    QTest::newRow("brought in, Close: the steps go") << true << int(Ids::Close) << 0;
    QTest::newRow("nothing brought in, OK") << false << int(Ids::Ok) << 1;
    QTest::newRow("nothing brought in, Close") << false << int(Ids::Close) << 1;
}

void TestDlgCatalogImpex::editorUndoesOnlyAnImportEndedWithOk()
{
    QFETCH(bool, bringIn);
    QFETCH(int, button);
    QFETCH(int, undoSteps);
    writeDefaultStore();
    const QString file = WriteCatalogFile(m_dir->filePath("in.xml"), "CABLES", [](CatalogBuilder& b)
                                          { b.item("Imported item", b.group("Imported", {}, 9)); });
    const auto editor = openDialog("CABLES");
    auto* lower = findControl<QTreeWidget>(editor.get(), Editor::Ids::CatalogTree);
    focusAndSelect(*editor, Editor::Ids::CatalogTree, "Low voltage/Cable 4x16");
    editor->OnBnClickedBtnDown();
    const auto catalog = editor->GetCatalog(1);
    const QString before = catalog->GetXML();
    m_host.queueOpenFileName(file);
    QTimer::singleShot(0, [&] {
        auto* dlg = qobject_cast<CDlgCatalogImpex*>(QApplication::activeModalWidget());
        QVERIFY(dlg);
        Click(dlg, Ids::BtnBrowse);
        if (bringIn)
        {
            Select(dlg, Ids::TreeTarget, "Imported");
            Click(dlg, Ids::BtnRemove);
        }
        Click(dlg, button);
    });
    Click(editor.get(), Editor::Ids::BtnImport);
    QCOMPARE(m_host.alerts(), QStringList());
    const QString after = catalog->GetXML();
    QCOMPARE(after != before, bringIn);
    QCOMPARE(editor->UndoStack()->count(), undoSteps);
    QCOMPARE(rowAt(lower, "Imported/Imported item") != nullptr, bringIn && button == Ids::Ok);
    if (undoSteps != 2)
        return;
    editor->OnUndo();
    QCOMPARE(catalog->GetXML(), before);
    QVERIFY(!rowAt(lower, "Imported"));
    editor->OnRedo();
    QCOMPARE(catalog->GetXML(), after);
    QVERIFY(rowAt(lower, "Imported/Imported item"));
}

void TestDlgCatalogImpex::radioTextsFit_data()
{
    QTest::addColumn<QString>("language");
    QTest::newRow("en") << "en";
    QTest::newRow("hr") << "hr";
}

void TestDlgCatalogImpex::radioTextsFit()
{
    QFETCH(QString, language);
    CModuleConfiguration::Instance()->SetLanguage(language);
    writeDefaultStore();
    const auto dlg = openImpex(CDlgCatalogImpex::Import);
    for (int id : {Ids::RadioFile, Ids::RadioRepository})
    {
        auto* radio = findControl<QRadioButton>(dlg.get(), id);
        QVERIFY2(radio->width() >= radio->sizeHint().width(), qPrintable(radio->text()));
        QVERIFY(!radio->geometry().intersects(findControl<QWidget>(dlg.get(), Ids::EditPath)->geometry()));
    }
    CModuleConfiguration::Instance()->SetLanguage("en");
}

void TestDlgCatalogImpex::screenshots_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<int>("direction");
    QTest::newRow("export, en") << "en" << int(CDlgCatalogImpex::Export);
    QTest::newRow("import, hr") << "hr" << int(CDlgCatalogImpex::Import);
}

// The dialog as a user sees it after a transfer, saved for the README when
// ZEVX_SCREENSHOT_DIR names a folder.
void TestDlgCatalogImpex::screenshots()
{
    QFETCH(QString, language);
    QFETCH(int, direction);
    const QString folder = qEnvironmentVariable("ZEVX_SCREENSHOT_DIR");
    if (folder.isEmpty())
        QSKIP("ZEVX_SCREENSHOT_DIR is not set");
    CModuleConfiguration::Instance()->SetLanguage(language);
    writeDefaultStore();
    const QString file = WriteCatalogFile(m_dir->filePath("in.xml"), "CABLES", [](CatalogBuilder& b)
                                          { b.item("Kabel NA2XS(F)2Y 1x240", b.group("Uvezeni kabeli", {}, 9)); });
    const auto dlg = openImpex(direction);
    if (direction == CDlgCatalogImpex::Export)
    {
        Select(dlg.get(), Ids::TreeLocal, "Low voltage");
        Click(dlg.get(), Ids::BtnAdd);
        m_host.queueSaveFileName(m_dir->filePath("cables-export"));
    }
    else
    {
        m_host.queueOpenFileName(file);
    }
    Click(dlg.get(), Ids::BtnBrowse);
    if (direction == CDlgCatalogImpex::Import)
    {
        Select(dlg.get(), Ids::TreeTarget, "Uvezeni kabeli");
        Click(dlg.get(), Ids::BtnRemove);
    }
    Tree(dlg.get(), Ids::TreeLocal)->expandAll();
    Tree(dlg.get(), Ids::TreeTarget)->expandAll();
    QVERIFY(dlg->grab().save(QDir(folder).filePath(
        QStringLiteral("impex-%1-%2.png").arg(direction == CDlgCatalogImpex::Export ? "export" : "import", language))));
    CModuleConfiguration::Instance()->SetLanguage("en");
}

QTEST_MAIN(TestDlgCatalogImpex)
#include "tst_DlgCatalogImpex.moc"
