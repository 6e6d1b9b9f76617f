// The editor as a user works it, with the mouse on the real controls: a splitter dragged
// after the dialog was resized, names longer than the trees are wide, a yes/no box clicked
// in the grid.
#include "catalog/PropertiesEx.h"
#include "controls/PropertyGridModel.h"
#include "controls/PropertyGridWidget.h"
#include "controls/SplitterControl.h"
#include "editor/CatalogEditorIds.h"
#include "tests/editor/CatalogBuilder.h"
#include "tests/editor/EditorDialogFixture.h"
#include "tests/support/FindControl.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QScrollBar>
#include <QStyleOptionViewItem>
#include <QtTest>
#include <boost/make_shared.hpp>

using namespace ZEVGis;
using namespace ZEVGis::Data;
using ZEVGis::Editor::CatalogTreeWidget;
namespace Ids = ZEVGis::Editor::Ids;

namespace
{
const QString LongName = QStringLiteral(
    "Transformer 10-0.4 kV 400 kVA, oil, hermetic, Dyn5, made by the works at the far end");

// One group holding an item with a long name, a text property and a yes/no property.
boost::shared_ptr<CCatalog> longNameCatalog()
{
    CatalogBuilder b;
    b.catalog().SetReference("LONG");
    auto group = b.group("Transformers", {}, 0, "{G-TR}");
    auto item = b.item(LongName, group, 0, "{I-TR}");
    CatalogBuilder::setProperties(item, {{"CATALOGITEM_NAME", LongName}, {"MAKER", "Works"}});
    auto category = item->GetProperties()->GetCategory(QStringLiteral("General"));
    category->AddPropertyEx(
        boost::make_shared<CPropertyEx>(QStringLiteral("HERMETIC"), CDataBox::fromBool(false)));
    return b.shared();
}

// Where the check box of a yes/no value is drawn in the grid.
QPoint checkBoxCentre(QTreeView* view, const QModelIndex& value)
{
    QStyleOptionViewItem option;
    option.initFrom(view->viewport());
    option.rect = view->visualRect(value);
    option.features |= QStyleOptionViewItem::HasCheckIndicator;
    option.showDecorationSelected = true;
    return view->style()
        ->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, view)
        .center();
}
} // namespace

class TestEditorInUse : public EditorDialogFixture
{
    Q_OBJECT

private slots:
    void splitterDragAfterResize_data();
    void splitterDragAfterResize();
    void longNamesScrollSideways();
    void clickOnYesNoBoxSelectsItsRow();
};

void TestEditorInUse::splitterDragAfterResize_data()
{
    QTest::addColumn<int>("growth"); // pixels the dialog is made taller before the drag
    QTest::addColumn<int>("drag");
    QTest::addColumn<int>("delta");

    QTest::newRow("first size, within range") << 0 << 10 << 10;
    QTest::newRow("first size, beyond range") << 0 << 60 << 20;
    QTest::newRow("taller, down within range") << 160 << 8 << 8;
    QTest::newRow("taller, down beyond range") << 160 << 60 << 20;
    QTest::newRow("taller, up beyond range") << 160 << -60 << -20;
    QTest::newRow("shorter again, up within range") << -1 << -12 << -12;
}

void TestEditorInUse::splitterDragAfterResize()
{
    QFETCH(int, growth);
    QFETCH(int, drag);
    QFETCH(int, delta);

    writeDefaultStore();
    auto dlg = openDialog("cables");
    if (growth < 0)
    {
        // Grown and back: the range must end where it began.
        dlg->resize(dlg->width(), dlg->height() + 200);
        dlg->resize(dlg->width(), dlg->height() - 200);
    }
    else
    {
        dlg->resize(dlg->width(), dlg->height() + growth);
    }
    auto* splitter = findControl<CSplitterControl>(dlg.get(), Ids::Splitter);
    QVERIFY(splitter);
    QSignalSpy moved(splitter, &CSplitterControl::splitterMoved);
    const int barBefore = splitter->y();
    const QPoint centre = splitter->rect().center();
    QTest::mousePress(splitter, Qt::LeftButton, {}, centre);
    QTest::mouseMove(splitter, centre + QPoint(0, drag));
    QTest::mouseRelease(splitter, Qt::LeftButton, {}, centre + QPoint(0, drag));

    QCOMPARE(moved.size(), 1);
    QCOMPARE(moved.first().at(1).toInt(), delta);
    QCOMPARE(splitter->y(), barBefore + delta);
}

void TestEditorInUse::longNamesScrollSideways()
{
    writeStore({entry("LONG", "Long names", longNameCatalog())});
    auto dlg = openDialog();
    auto* tree = findControl<CatalogTreeWidget>(dlg.get(), Ids::CatalogTree);
    QVERIFY(tree);
    QCOMPARE(tree->horizontalScrollBar()->maximum(), 0);

    // Opening the group shows the long name whole, reached by scrolling sideways.
    QTreeWidgetItem* group = rowAt(tree, "Transformers");
    group->setExpanded(true);
    QTreeWidgetItem* item = rowAt(tree, "Transformers/" + LongName);
    const int nameRight = tree->visualItemRect(item).left() + tree->iconSize().width() +
                          tree->fontMetrics().horizontalAdvance(LongName);
    QVERIFY2(tree->header()->sectionSize(0) >= nameRight,
             qPrintable(QString::number(tree->header()->sectionSize(0))));
    QVERIFY(tree->horizontalScrollBar()->maximum() > 0);
    // The row still spans the view when every name fits.
    QCOMPARE(tree->header()->sectionSize(0) >= tree->viewport()->width(), true);

    // Renamed short, nothing is left to scroll to.
    focusAndSelect(*dlg, Ids::CatalogTree, "Transformers/" + LongName);
    QTest::keyClick(tree, Qt::Key_F2);
    QVERIFY(tree->isEditingLabel());
    auto* editor = qobject_cast<QLineEdit*>(QApplication::focusWidget());
    QVERIFY(editor);
    editor->selectAll();
    QTest::keyClicks(editor, "T 400");
    QTest::keyClick(editor, Qt::Key_Return);
    QCoreApplication::processEvents();
    QCOMPARE(item->text(0), QString("T 400"));
    QCOMPARE(tree->horizontalScrollBar()->maximum(), 0);
    QCOMPARE(tree->header()->sectionSize(0), tree->viewport()->width());

    // Closing the group again leaves only short names as well.
    item->setText(0, LongName);
    QVERIFY(tree->header()->sectionSize(0) > tree->viewport()->width());
    group->setExpanded(false);
    QCOMPARE(tree->header()->sectionSize(0), tree->viewport()->width());
}

void TestEditorInUse::clickOnYesNoBoxSelectsItsRow()
{
    writeStore({entry("LONG", "Long names", longNameCatalog())});
    auto dlg = openDialog();
    focusAndSelect(*dlg, Ids::CatalogTree, "Transformers/" + LongName);
    auto* grid = findControl<PropertyGridWidget>(dlg.get(), Ids::Grid);
    QVERIFY(grid);
    PropertyGridView* view = grid->view();
    PropertyGridModel* model = grid->model();
    view->setCurrentIndex(model->indexOfTag("MAKER"));
    const QModelIndex hermetic =
        model->indexOfTag("HERMETIC").siblingAtColumn(PropertyGridModel::ValueColumn);
    QVERIFY(hermetic.isValid());

    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, checkBoxCentre(view, hermetic));
    QCOMPARE(grid->currentProperty()->GetTag(), QString("HERMETIC"));
    QCOMPARE(grid->currentProperty()->GetValue().ToBool(), true);
    // Space now toggles the box just clicked, not the row selected before.
    QTest::keyClick(view, Qt::Key_Space);
    QCOMPARE(grid->currentProperty()->GetTag(), QString("HERMETIC"));
    QCOMPARE(grid->currentProperty()->GetValue().ToBool(), false);
    QVERIFY(!view->isEditing());
}

QTEST_MAIN(TestEditorInUse)
#include "tst_EditorInUse.moc"
