// Repository mode of the import/export dialog on a real SQLite repository in a temporary
// folder: sending, the right tree's fill, bringing records back, deleting, and a repository
// that goes away.
#include "catalog/CatalogManager.h"
#include "catalog/ModuleConfiguration.h"
#include "controls/ClrTreeCtrl.h"
#include "impex/DlgCatalogImpex.h"
#include "impex/ImpexIds.h"
#include "repository/RepositoryStorageManager.h"
#include "tests/editor/EditorDialogFixture.h"
#include "tests/impex/RecordingRepository.h"
#include "tests/support/FindControl.h"

#include <QPushButton>
#include <QRadioButton>
#include <QtTest>
#include <boost/make_shared.hpp>

using namespace ZEVGis;
using Data::CCatalog;
using Data::CCatalogManager;
using Repository::CRepositoryStorageManager;
namespace Ids = ZEVGis::Impex::Ids;

namespace
{

CClrTreeCtrl* Tree(QWidget* dlg, int id)
{
    return findControl<CClrTreeCtrl>(dlg, id);
}

void Click(QWidget* dlg, int id)
{
    auto* button = findControl<QAbstractButton>(dlg, id);
    QVERIFY2(button, qPrintable(QString::number(id)));
    button->click();
}

void Select(QWidget* dlg, int treeId, const QString& path)
{
    QTreeWidgetItem* row = rowAt(Tree(dlg, treeId), path);
    QVERIFY2(row, qPrintable(path));
    Tree(dlg, treeId)->setCurrentItem(row);
}

QStringList Paths(QWidget* dlg, int treeId)
{
    return pathsOf(rowAt(Tree(dlg, treeId), ""), "");
}

} // namespace

class TestImpexRepository : public EditorDialogFixture
{
    Q_OBJECT

private slots:
    // The client's connection is closed while Qt's SQL plugins are still there.
    void cleanupTestCase() { CRepositoryStorageManager::Instance()->Configure("none"); }
    void sendsBottomUpAndShowsWhatArrived();
    void groupBroughtBackIntoAnEmptyCatalogWithItsParents();
    void deleteGroupDeepestFirst();
    void lostDuringFillKeepsWhatWasInserted();
    void lostDuringSendStopsWithoutReload();

private:
    // A fresh SQLite repository and catalog store in the test's folder.
    void prepare();
    std::unique_ptr<CDlgCatalogImpex> openInRepositoryMode(boost::shared_ptr<CCatalog> local = {});
    RecordingRepository m_repository;
};

void TestImpexRepository::prepare()
{
    QVERIFY(CRepositoryStorageManager::Instance()->Configure("sqlite:" + m_dir->filePath("repo.sqlite")));
    m_repository = RecordingRepository();
    writeDefaultStore();
}

std::unique_ptr<CDlgCatalogImpex> TestImpexRepository::openInRepositoryMode(boost::shared_ptr<CCatalog> local)
{
    auto dlg = std::make_unique<CDlgCatalogImpex>();
    dlg->SetParameters(CDlgCatalogImpex::Export, "CABLES");
    dlg->SetLocalCatalog(local ? local : CCatalogManager::Instance()->GetCatalog("CABLES", 1));
    dlg->SetRepository(&m_repository);
    dlg->show();
    auto* radio = findControl<QRadioButton>(dlg.get(), Ids::RadioRepository);
    if (!radio->isEnabled())
        qWarning("the repository radio is disabled");
    radio->click();
    return dlg;
}

void TestImpexRepository::sendsBottomUpAndShowsWhatArrived()
{
    prepare();
    const auto dlg = openInRepositoryMode();
    QCOMPARE(rowAt(Tree(dlg.get(), Ids::TreeTarget), "")->text(0),
             CModuleConfiguration::Instance()->GetMsg(350) + " - network");
    QVERIFY(findControl<QPushButton>(dlg.get(), Ids::BtnDel)->isEnabled());
    QVERIFY(!findControl<QPushButton>(dlg.get(), Ids::BtnBrowse)->isEnabled());
    Select(dlg.get(), Ids::TreeLocal, "Medium voltage/Copper/Cu 95");
    Click(dlg.get(), Ids::BtnAdd);
    QCOMPARE(m_repository.calls(),
             (QStringList{"add Cu 95 0", "add Copper 0", "add Medium voltage 0"}));
    QCOMPARE(Paths(dlg.get(), Ids::TreeTarget),
             (QStringList{"Medium voltage", "Medium voltage/Copper", "Medium voltage/Copper/Cu 95"}));

    // The left root sends every top-level entry; the right tree follows, ordered by number.
    m_repository.clearCalls();
    Select(dlg.get(), Ids::TreeLocal, "");
    Click(dlg.get(), Ids::BtnAdd);
    QCOMPARE(childTexts(rowAt(Tree(dlg.get(), Ids::TreeTarget), "")),
             (QStringList{"Loose item", "Medium voltage", "Low voltage"}));
    QVERIFY(m_repository.calls().contains("add Cable 4x25 1"));
}

void TestImpexRepository::groupBroughtBackIntoAnEmptyCatalogWithItsParents()
{
    prepare();
    {
        const auto dlg = openInRepositoryMode();
        Select(dlg.get(), Ids::TreeLocal, "Medium voltage");
        Click(dlg.get(), Ids::BtnAdd);
    }
    auto empty = boost::make_shared<CCatalog>();
    empty->SetReference("CABLES");
    const auto dlg = openInRepositoryMode(empty);
    Select(dlg.get(), Ids::TreeTarget, "Medium voltage/Copper");
    Click(dlg.get(), Ids::BtnRemove);
    QCOMPARE(Paths(dlg.get(), Ids::TreeLocal),
             (QStringList{"Medium voltage", "Medium voltage/Copper", "Medium voltage/Copper/Cu 95"}));
    const auto cu95 = empty->GetItembyGuid("{B-95}");
    QVERIFY(cu95);
    QCOMPARE(cu95->GetParentItemGuid(), QStringLiteral("{B-CU}"));
    QCOMPARE(cu95->GetProperty("LSEQUIP_TYPE")->GetValue().ToString(), QStringLiteral("CABLE_MV"));
    QCOMPARE(empty->GetRootElementsMap()->size(), size_t(1));
}

void TestImpexRepository::deleteGroupDeepestFirst()
{
    prepare();
    const auto dlg = openInRepositoryMode();
    Select(dlg.get(), Ids::TreeLocal, "Medium voltage");
    Click(dlg.get(), Ids::BtnAdd);
    m_repository.clearCalls();
    Select(dlg.get(), Ids::TreeTarget, "Medium voltage");
    Click(dlg.get(), Ids::BtnDel);
    QCOMPARE(m_repository.calls(),
             (QStringList{"delete {B-95}", "delete {B-CU}", "delete {B-CU}", "delete {B-AL}", "delete {B-AL}",
                          "delete {B-MV}"}));
    QCOMPARE(Paths(dlg.get(), Ids::TreeTarget), QStringList());
    Click(dlg.get(), Ids::RadioRepository);
    QCOMPARE(Paths(dlg.get(), Ids::TreeTarget), QStringList());
}

void TestImpexRepository::lostDuringFillKeepsWhatWasInserted()
{
    prepare();
    {
        const auto dlg = openInRepositoryMode();
        Select(dlg.get(), Ids::TreeLocal, "");
        Click(dlg.get(), Ids::BtnAdd);
    }
    // The top level, then the first group's children, then the repository is gone.
    m_repository.loseAfter(2);
    const auto dlg = openInRepositoryMode();
    const QStringList shown = Paths(dlg.get(), Ids::TreeTarget);
    QVERIFY2(!shown.isEmpty() && shown.size() < 8, qPrintable(shown.join(", ")));
    // Not sorted and not expanded once it stopped.
    QVERIFY(!rowAt(Tree(dlg.get(), Ids::TreeTarget), "")->isExpanded());
}

void TestImpexRepository::lostDuringSendStopsWithoutReload()
{
    prepare();
    const auto dlg = openInRepositoryMode();
    m_repository.loseAfter(1);
    Select(dlg.get(), Ids::TreeLocal, "Low voltage");
    Click(dlg.get(), Ids::BtnAdd);
    QCOMPARE(m_repository.calls(), QStringList{"add Low voltage 0"});
    QCOMPARE(Paths(dlg.get(), Ids::TreeTarget), QStringList());
}

QTEST_MAIN(TestImpexRepository)
#include "tst_ImpexRepository.moc"
