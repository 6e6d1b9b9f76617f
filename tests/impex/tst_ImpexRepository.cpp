// Repository mode of the import/export dialog on a real repository, each scenario on a fresh
// SQLite file and on a fresh database of the PostgreSQL server the test starts: sending, the
// right tree's fill, bringing records back, deleting, and a repository that goes away.
#include "catalog/CatalogManager.h"
#include "catalog/ModuleConfiguration.h"
#include "controls/ClrTreeCtrl.h"
#include "impex/DlgCatalogImpex.h"
#include "impex/ImpexIds.h"
#include "repository/RepositoryStorageManager.h"
#include "tests/editor/CatalogBuilder.h"
#include "tests/editor/EditorDialogFixture.h"
#include "tests/impex/ImpexDialogDriver.h"
#include "tests/impex/RecordingRepository.h"
#include "tests/repository/RepositoryTestSupport.h"
#include "tests/support/FindControl.h"

#include <QProgressDialog>
#include <QPushButton>
#include <QTimer>
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

QStringList Paths(QWidget* dlg, int treeId)
{
    return pathsOf(rowAt(Tree(dlg, treeId), ""), "");
}

} // namespace

// A fresh repository of the row's back end, the client configured on it and the catalog store
// written; the PostgreSQL row is skipped, saying why, when no server can be made here.
#define PREPARE_REPOSITORY()                                                                       \
    do {                                                                                           \
        QFETCH(QString, backend);                                                                  \
        QString why;                                                                               \
        const QString url = RepositoryTest::freshRepository(backend, *m_dir, why);                 \
        if (url.isEmpty() && backend == QLatin1String("postgresql"))                               \
            QSKIP(qPrintable(why));                                                                \
        QVERIFY2(!url.isEmpty(), qPrintable(why));                                                 \
        auto* client = CRepositoryStorageManager::Instance();                                      \
        QVERIFY2(client->Configure(url), qPrintable(client->LastError()));                         \
        m_repository = RecordingRepository();                                                      \
        writeDefaultStore();                                                                       \
    } while (0)

class TestImpexRepository : public EditorDialogFixture
{
    Q_OBJECT

private slots:
    // The client's connection is closed while Qt's SQL plugins are still there.
    void cleanupTestCase()
    {
        CRepositoryStorageManager::Instance()->Configure("none");
        RepositoryTest::stopSharedServer();
    }
    void sendsBottomUpAndShowsWhatArrived_data() { RepositoryTest::addBackendRows(); }
    void sendsBottomUpAndShowsWhatArrived();
    void groupSentAloneThenWithDescendants_data() { RepositoryTest::addBackendRows(); }
    void groupSentAloneThenWithDescendants();
    void groupBroughtBackIntoAnEmptyCatalogWithItsParents_data() { RepositoryTest::addBackendRows(); }
    void groupBroughtBackIntoAnEmptyCatalogWithItsParents();
    void deleteGroupDeepestFirst_data() { RepositoryTest::addBackendRows(); }
    void deleteGroupDeepestFirst();
    void deleteKeepsRowsWhoseRecordStayed_data() { RepositoryTest::addBackendRows(); }
    void deleteKeepsRowsWhoseRecordStayed();
    void lostDuringFillKeepsWhatWasInserted_data() { RepositoryTest::addBackendRows(); }
    void lostDuringFillKeepsWhatWasInserted();
    void largeTransfersShowProgress_data() { RepositoryTest::addBackendRows(); }
    void largeTransfersShowProgress();
    void lostDuringSendStopsWithoutReload_data() { RepositoryTest::addBackendRows(); }
    void lostDuringSendStopsWithoutReload();

private:
    std::unique_ptr<CDlgCatalogImpex> openInRepositoryMode(boost::shared_ptr<CCatalog> local = {});
    RecordingRepository m_repository;
};

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
    PREPARE_REPOSITORY();
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

void TestImpexRepository::groupSentAloneThenWithDescendants()
{
    PREPARE_REPOSITORY();
    const auto dlg = openInRepositoryMode();
    Select(dlg.get(), Ids::TreeLocal, "Medium voltage/Copper");
    Click(dlg.get(), Ids::BtnAdd);
    QCOMPARE(m_repository.calls(),
             (QStringList{"add Copper 0", "add Medium voltage 0", "add Copper 1", "add Cu 95 1"}));
    m_repository.clearCalls();
    Select(dlg.get(), Ids::TreeLocal, "Medium voltage");
    Click(dlg.get(), Ids::BtnAdd);
    QCOMPARE(m_repository.calls(), (QStringList{"add Medium voltage 0", "add Medium voltage 1",
                                                "add Copper 1", "add Cu 95 1", "add Aluminium 1"}));
    QCOMPARE(Paths(dlg.get(), Ids::TreeTarget),
             (QStringList{"Medium voltage", "Medium voltage/Copper", "Medium voltage/Copper/Cu 95",
                          "Medium voltage/Aluminium"}));
}

void TestImpexRepository::groupBroughtBackIntoAnEmptyCatalogWithItsParents()
{
    PREPARE_REPOSITORY();
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
    PREPARE_REPOSITORY();
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

void TestImpexRepository::deleteKeepsRowsWhoseRecordStayed()
{
    PREPARE_REPOSITORY();
    const auto dlg = openInRepositoryMode();
    Select(dlg.get(), Ids::TreeLocal, "Medium voltage");
    Click(dlg.get(), Ids::BtnAdd);
    m_repository.clearCalls();
    m_repository.failOn("{B-CU}");
    Select(dlg.get(), Ids::TreeTarget, "Medium voltage");
    Click(dlg.get(), Ids::BtnDel);
    // The failed sub-group stops the walk: its sibling and the group stay too.
    QCOMPARE(m_repository.calls(), (QStringList{"delete {B-95}", "delete {B-CU}", "delete {B-CU}"}));
    const QStringList kept{"Medium voltage", "Medium voltage/Copper", "Medium voltage/Aluminium"};
    QCOMPARE(Paths(dlg.get(), Ids::TreeTarget), kept);
    // The rows left are what the repository still holds.
    Click(dlg.get(), Ids::RadioRepository);
    QCOMPARE(Paths(dlg.get(), Ids::TreeTarget), kept);
}

void TestImpexRepository::lostDuringFillKeepsWhatWasInserted()
{
    PREPARE_REPOSITORY();
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
    PREPARE_REPOSITORY();
    const auto dlg = openInRepositoryMode();
    m_repository.loseAfter(1);
    Select(dlg.get(), Ids::TreeLocal, "Low voltage");
    Click(dlg.get(), Ids::BtnAdd);
    QCOMPARE(m_repository.calls(), QStringList{"add Low voltage 0"});
    QCOMPARE(Paths(dlg.get(), Ids::TreeTarget), QStringList());
}

void TestImpexRepository::largeTransfersShowProgress()
{
    PREPARE_REPOSITORY();
    CatalogBuilder b;
    b.catalog().SetReference("CABLES");
    auto big = b.group("Big", {}, 0, "{BIG}");
    for (int i = 0; i < 400; ++i)
        b.item(QStringLiteral("Item %1").arg(i, 3, 10, QChar('0')), big, i);

    // What a progress window says while the transfer runs, seen from the event loop the
    // transfer keeps turning.
    QStringList seen;
    QTimer watcher;
    QWidget* watched = nullptr;
    connect(&watcher, &QTimer::timeout, [&]
            {
                if (auto* window = watched ? watched->findChild<QProgressDialog*>() : nullptr;
                    window && window->isVisible())
                    seen << window->labelText().section(':', 0, 0);
            });
    watcher.start(0);

    const auto dlg = openInRepositoryMode(b.shared());
    watched = dlg.get();
    Select(dlg.get(), Ids::TreeLocal, "Big");
    Click(dlg.get(), Ids::BtnAdd);
    QVERIFY(m_host.maxWaitCursorDepth() > 0);
    QCOMPARE(Paths(dlg.get(), Ids::TreeTarget).size(), 401);
    QVERIFY(!dlg->findChild<QProgressDialog*>());
    seen.removeDuplicates();
    const auto text = [](unsigned id) { return CModuleConfiguration::Instance()->GetMsg(id).section(':', 0, 0); };
    // The send, then the right tree's reload.
    QCOMPARE(seen, (QStringList{text(70250), text(70251)}));

    seen.clear();
    Select(dlg.get(), Ids::TreeTarget, "Big");
    Click(dlg.get(), Ids::BtnDel);
    QCOMPARE(Paths(dlg.get(), Ids::TreeTarget), QStringList());
    seen.removeDuplicates();
    QCOMPARE(seen, QStringList{text(70253)});
}

QTEST_MAIN(TestImpexRepository)
#include "tst_ImpexRepository.moc"
