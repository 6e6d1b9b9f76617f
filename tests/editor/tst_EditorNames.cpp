// A name typed into the grid's "CATALOGITEM_NAME" row is the item's name for everything the
// editor does afterwards: trees filled again, sorting by name, the saved file.
#include "catalog/CatalogManager.h"
#include "editor/CatalogEditorIds.h"
#include "editor/CatalogTreeWidget.h"
#include "tests/editor/EditorDialogFixture.h"
#include "tests/support/FindControl.h"

#include <QAbstractButton>
#include <QtTest>

using namespace ZEVGis;
using namespace ZEVGis::Data;
namespace Ids = ZEVGis::Editor::Ids;

namespace
{
const QString OldName = QStringLiteral("Cable 4x16");
const QString NewName = QStringLiteral("Cable 4x99");
} // namespace

class TestEditorNames : public EditorDialogFixture
{
    Q_OBJECT

private slots:
    void gridNameRoundTrip_data();
    void gridNameRoundTrip();
};

void TestEditorNames::gridNameRoundTrip_data()
{
    QTest::addColumn<int>("tree");
    QTest::addColumn<QString>("after");      // what the user does once the name is typed
    QTest::addColumn<QStringList>("where");  // rows of that tree named NewName, afterwards

    const int lower = Ids::CatalogTree;
    const int upper = Ids::DrawingTree;
    const QStringList inPlace{"Low voltage/" + NewName};
    // clang-format off
    QTest::newRow("dropped into another group") << lower << "drop"   << QStringList{"Medium voltage/Aluminium/" + NewName};
    QTest::newRow("siblings sorted by name")    << lower << "sort"   << inPlace;
    QTest::newRow("saved by OK, opened again")  << lower << "reopen" << inPlace;
    QTest::newRow("drawing copy saved, opened") << upper << "reopen" << inPlace;
    // clang-format on
}

void TestEditorNames::gridNameRoundTrip()
{
    QFETCH(int, tree);
    QFETCH(QString, after);
    QFETCH(QStringList, where);

    writeDefaultStore();
    auto dlg = openDialog("CABLES");
    focusAndSelect(*dlg, tree, "Low voltage/" + OldName);
    editInGrid(*dlg, QStringLiteral("CATALOGITEM_NAME"), NewName);
    auto* lower = findControl<QTreeWidget>(dlg.get(), Ids::CatalogTree);
    const bool ascending = CCatalogEditorDlg::NextSortAscending();

    if (after == u"drop")
    {
        const QPoint end = centreOf(lower, rowAt(lower, "Medium voltage/Aluminium"));
        dragRow(lower, centreOf(lower, rowAt(lower, "Low voltage/" + NewName)), end, false);
    }
    else if (after == u"sort")
    {
        findControl<QAbstractButton>(dlg.get(), Ids::BtnSort)->click();
        // Renumbered by the new name: "Cable 4x25" now comes first going up.
        const QStringList sorted =
            ascending ? QStringList{"Cable 4x25", NewName} : QStringList{NewName, "Cable 4x25"};
        QCOMPARE(childTexts(rowAt(lower, "Low voltage")), sorted);
    }
    else if (after == u"reopen")
    {
        findControl<QAbstractButton>(dlg.get(), Ids::Ok)->click();
        QVERIFY(!dlg->isVisible());
        const QString file = tree == Ids::DrawingTree ? m_store->drawingPath() + ".catalogs/cables.xml"
                                                      : m_store->root() + "/cables.xml";
        QFile saved(file);
        QVERIFY2(saved.open(QIODevice::ReadOnly), qPrintable(file));
        const QByteArray bytes = saved.readAll();
        QVERIFY2(!bytes.contains(OldName.toUtf8()), bytes.constData());
        m_store->reopen();
        dlg = openDialog("CABLES");
    }

    auto* shown = findControl<QTreeWidget>(dlg.get(), tree);
    QStringList found = pathsOf(rowAt(shown, ""), "Cable 4x");
    found.sort();
    where << "Low voltage/Cable 4x25";
    where.sort();
    QCOMPARE(found.join(", "), where.join(", "));
    auto catalog = CCatalogManager::Instance()->GetCatalog("CABLES", tree == Ids::DrawingTree ? 0 : 1);
    for (const auto& [guid, item] : *catalog->GetAllElementsMap())
        QVERIFY2(item->GetName() != OldName, qPrintable(guid));
}

QTEST_MAIN(TestEditorNames)
#include "tst_EditorNames.moc"
