// The editor on a catalog of 100,000 items with 10 properties each: opening the dialog until
// both trees are filled and shown, one selection until the grid shows the item, one keystroke
// in the trees' filter, and the undo of deleting a group of 10,000 entries.
//
//   bench_editor [--items=N] [google benchmark options]
#include "bench/catalog/CatalogGenerator.h"
#include "catalog/CatalogManager.h"
#include "controls/PropertyGridModel.h"
#include "controls/PropertyGridWidget.h"
#include "editor/CatalogEditorDlg.h"
#include "editor/CatalogEditorIds.h"
#include "host/ScriptedHost.h"
#include "tests/editor/EditorTestStore.h"
#include "tests/support/FindControl.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>
#include <QUndoStack>
#include <benchmark/benchmark.h>
#include <cstring>
#include <memory>

using namespace ZEVGis;
using namespace ZEVGis::Data;
namespace Ids = ZEVGis::Editor::Ids;

namespace
{

int g_items = 100000;
std::unique_ptr<QTemporaryDir> g_dir;
std::unique_ptr<EditorTestStore> g_store;

// Gathers the sub-groups of every top group under the first one, which then holds a tenth of
// the catalog for each ten top groups.
void gatherIntoFirstGroup(CCatalog& catalog)
{
    std::vector<boost::shared_ptr<CCatalogItem>> tops;
    catalog.GetSortedRootElements(tops);
    const int gathered = std::min<int>(int(tops.size()), 10);
    for (int t = 1; t < gathered; ++t)
    {
        std::vector<boost::shared_ptr<CCatalogItem>> subs;
        tops[size_t(t)]->GetSortedSubItems(subs);
        for (const auto& sub : subs)
        {
            tops[size_t(t)]->RemoveSubItem(sub->GetGUID());
            sub->SetParentItem(tops[0]);
            tops[0]->AddSubItem(sub);
        }
    }
}

// "BENCH" keeps no drawing version (upper tree empty); "BENCHDWG" keeps one, so both trees
// show 100,000 rows. "BENCHBIG" is "BENCH" with a first group of 10,000 entries.
void writeStore()
{
    g_dir = std::make_unique<QTemporaryDir>();
    g_store = std::make_unique<EditorTestStore>(g_dir->path());
    for (const char* reference : {"BENCH", "BENCHDWG", "BENCHBIG"})
    {
        auto catalog = boost::make_shared<CCatalog>();
        ZevxBench::generateCatalog(*catalog, g_items);
        if (std::strcmp(reference, "BENCHBIG") == 0)
            gatherIntoFirstGroup(*catalog);
        EditorTestStore::Entry entry;
        entry.reference = QString::fromLatin1(reference);
        entry.nameUI = entry.reference;
        entry.drawingVersion = std::strcmp(reference, "BENCHDWG") == 0;
        entry.catalog = catalog;
        g_store->add(entry);
    }
    if (!g_store->write())
        qFatal("the benchmark store could not be written");
}

QString referenceFor(const benchmark::State& state)
{
    return state.range(0) ? QStringLiteral("BENCHDWG") : QStringLiteral("BENCH");
}

// Construction, start-up (catalog combo, both trees filled) and the first paint.
std::unique_ptr<CCatalogEditorDlg> openEditor(const QString& reference)
{
    auto dlg = std::make_unique<CCatalogEditorDlg>();
    dlg->SetCatalogReference(reference);
    dlg->show();
    QCoreApplication::processEvents();
    return dlg;
}

// The number of rows below the root of a tree, counted the long way so it checks the fill.
int rowsBelowRoot(CCatalogEditorDlg& dlg, int treeId)
{
    auto* tree = findControl<QTreeWidget>(&dlg, treeId);
    int rows = 0;
    for (QTreeWidgetItemIterator it(tree); *it; ++it)
        ++rows;
    return rows - 1;
}

void BM_OpenEditor_CatalogOnDisk(benchmark::State& state)
{
    const QString reference = referenceFor(state);
    for (auto _ : state)
    {
        g_store->reopen(); // nothing cached: the catalog is read from its file
        QElapsedTimer timer;
        timer.start();
        auto dlg = openEditor(reference);
        state.SetIterationTime(double(timer.nsecsElapsed()) / 1e9);
        const int expectedUpper = state.range(0) ? g_items : 0;
        if (rowsBelowRoot(*dlg, Ids::CatalogTree) != g_items || rowsBelowRoot(*dlg, Ids::DrawingTree) != expectedUpper)
            state.SkipWithError("the trees do not show every entry");
        dlg->hide();
    }
}

// The catalog manager's share of a cold open: reading the catalog (and the drawing copy).
void BM_LoadCatalogOnly(benchmark::State& state)
{
    const QString reference = referenceFor(state);
    for (auto _ : state)
    {
        g_store->reopen();
        QElapsedTimer timer;
        timer.start();
        CCatalogManager::Instance()->GetCatalog(reference, 1);
        CCatalogManager::Instance()->GetCatalog(reference, 0);
        state.SetIterationTime(double(timer.nsecsElapsed()) / 1e9);
    }
}

void BM_OpenEditor_CatalogLoaded(benchmark::State& state)
{
    const QString reference = referenceFor(state);
    g_store->reopen();
    CCatalogManager::Instance()->GetCatalog(reference, 1);
    CCatalogManager::Instance()->GetCatalog(reference, 0);
    for (auto _ : state)
    {
        QElapsedTimer timer;
        timer.start();
        auto dlg = openEditor(reference);
        state.SetIterationTime(double(timer.nsecsElapsed()) / 1e9);
        dlg->hide();
    }
}

// One selection in the lower tree until the grid holds the item's properties and has painted.
void BM_SelectItem(benchmark::State& state)
{
    g_store->reopen();
    auto dlg = openEditor(QStringLiteral("BENCH"));
    auto* tree = findControl<QTreeWidget>(dlg.get(), Ids::CatalogTree);
    auto* grid = findControl<PropertyGridWidget>(dlg.get(), Ids::Grid);
    std::vector<QTreeWidgetItem*> rows;
    QTreeWidgetItem* root = tree->topLevelItem(0);
    for (int t = 0; t < root->childCount() && rows.size() < 1000; ++t)
        for (int s = 0; s < root->child(t)->childCount(); ++s)
            for (int i = 0; i < root->child(t)->child(s)->childCount() && i < 5; ++i)
                rows.push_back(root->child(t)->child(s)->child(i));
    tree->setFocus();
    size_t next = 0;
    for (auto _ : state)
    {
        QTreeWidgetItem* row = rows[next++ % rows.size()];
        QElapsedTimer timer;
        timer.start();
        tree->setCurrentItem(row);
        QCoreApplication::processEvents();
        state.SetIterationTime(double(timer.nsecsElapsed()) / 1e9);
        if (!dlg->CurrentItem() || grid->model()->rowCount() == 0)
            state.SkipWithError("the grid does not show the selected item");
    }
}

// One keystroke in the filter field until both trees (100,000 rows each) are filtered and
// painted: typing a group's name (every item hidden), an item's number (a few shown), and
// clearing the field. The slowest keystroke is reported too.
void BM_FilterKeystroke(benchmark::State& state)
{
    g_store->reopen();
    auto dlg = openEditor(QStringLiteral("BENCHDWG"));
    // The user goes to the field first (Ctrl+F or a click), which reads the trees' rows.
    QApplication::setActiveWindow(dlg.get());
    findControl<QLineEdit>(dlg.get(), Ids::FilterEdit)->setFocus(Qt::ShortcutFocusReason);
    QCoreApplication::processEvents();
    static const char* const typed[] = {"g", "gr", "gru", "grup", "grupa", "", "#", "#4", "#47",
                                        "#471", "#4711", "#471", "#47", "#4", "#", ""};
    size_t next = 0;
    double slowest = 0;
    for (auto _ : state)
    {
        const QString text = QString::fromLatin1(typed[next++ % std::size(typed)]);
        QElapsedTimer timer;
        timer.start();
        dlg->SetFilterText(text);
        dlg->repaint();
        QCoreApplication::processEvents();
        const double seconds = double(timer.nsecsElapsed()) / 1e9;
        slowest = std::max(slowest, seconds);
        state.SetIterationTime(seconds);
    }
    state.counters["slowest_ms"] = slowest * 1000;
    // Every item shown matches (groups are shown for the items below them).
    auto* tree = findControl<QTreeWidget>(dlg.get(), Ids::CatalogTree);
    dlg->SetFilterText(QStringLiteral("#4711"));
    int shown = 0;
    for (QTreeWidgetItemIterator it(tree); *it; ++it)
    {
        bool visible = true;
        for (QTreeWidgetItem* up = *it; up && visible; up = up->parent())
            visible = !up->isHidden();
        if (visible && (*it)->childCount() == 0 && (*it)->parent())
        {
            ++shown;
            if (!(*it)->text(0).contains(QLatin1String("#4711")))
                state.SkipWithError("the filter shows rows that do not match");
        }
    }
    if (g_items > 4711 && shown == 0)
        state.SkipWithError("the filter hides the rows that match");
}

// Undo of deleting a group with 10,000 entries below it, until the catalog tree shows it
// again with its row selected.
void BM_UndoDeleteGroup(benchmark::State& state)
{
    g_store->reopen();
    auto dlg = openEditor(QStringLiteral("BENCHBIG"));
    auto* tree = findControl<QTreeWidget>(dlg.get(), Ids::CatalogTree);
    auto& host = static_cast<Host::ScriptedHost&>(Host::HostServices::current());
    tree->setFocus();
    QTreeWidgetItem* root = tree->topLevelItem(0);
    QTreeWidgetItem* big = root->child(0);
    for (int i = 1; i < root->childCount(); ++i)
        if (root->child(i)->childCount() > big->childCount())
            big = root->child(i);
    const QString name = big->text(0);
    tree->setCurrentItem(big);
    int entries = 0;
    for (QTreeWidgetItemIterator it(big); *it && (*it == big || (*it)->parent()); ++it)
        if (*it != big)
        {
            QTreeWidgetItem* up = (*it)->parent();
            while (up && up != big)
                up = up->parent();
            if (!up)
                break;
            ++entries;
        }
    state.counters["entries"] = entries;
    for (auto _ : state)
    {
        host.queueAnswer(true);
        dlg->OnBnClickedBtnDel();
        QCoreApplication::processEvents();
        QElapsedTimer timer;
        timer.start();
        dlg->OnUndo();
        dlg->repaint();
        QCoreApplication::processEvents();
        state.SetIterationTime(double(timer.nsecsElapsed()) / 1e9);
        if (!tree->currentItem() || tree->currentItem()->text(0) != name)
            state.SkipWithError("the group is not back and selected");
    }
}

} // namespace

BENCHMARK(BM_FilterKeystroke)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(64);
BENCHMARK(BM_UndoDeleteGroup)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);
BENCHMARK(BM_OpenEditor_CatalogOnDisk)->Arg(0)->Arg(1)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_LoadCatalogOnly)->Arg(0)->Arg(1)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_OpenEditor_CatalogLoaded)->Arg(0)->Arg(1)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);
BENCHMARK(BM_SelectItem)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(200);

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    for (int i = 1; i < argc; ++i)
        if (std::strncmp(argv[i], "--items=", 8) == 0)
            g_items = std::atoi(argv[i] + 8);
    QApplication app(argc, argv);
    QStandardPaths::setTestModeEnabled(true);
    Host::ScriptedHost host;
    Host::HostServices::install(&host);
    writeStore();

    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    Host::HostServices::install(nullptr);
    return 0;
}
