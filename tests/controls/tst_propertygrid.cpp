#include "catalog/PropertiesEx.h"
#include "controls/ControlId.h"
#include "controls/PropertyExGridCtrl.h"
#include "controls/PropertyGridModel.h"
#include "controls/PropertyGridWidget.h"
#include "controls/PropertyValueText.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <QToolBar>
#include <boost/make_shared.hpp>

using namespace ZEVGis::Data;

namespace
{

boost::shared_ptr<CPropertyEx> property(const QString& tag, DataType type, const QString& text)
{
    return boost::make_shared<CPropertyEx>(tag, CDataBox(type, text));
}

// Two categories holding one property of every kind.
boost::shared_ptr<CPropertiesEx> sampleProperties()
{
    auto general = boost::make_shared<CCategory>(QStringLiteral("General"));
    general->AddPropertyEx(property("NAME", DataType::String, "Pipe"));
    general->AddPropertyEx(property("COUNT", DataType::Integer, "42"));
    general->AddPropertyEx(property("LENGTH", DataType::Double, "1.23456789"));
    general->AddPropertyEx(property("ACTIVE", DataType::Boolean, "1"));
    auto kind = property("KIND", DataType::Choice, "B");
    kind->SetChoices({"A", "B", "C"});
    general->AddPropertyEx(kind);

    auto other = boost::make_shared<CCategory>(QStringLiteral("Other"));
    other->AddPropertyEx(property("BIG", DataType::Integer, "9223372036854775807"));
    auto locked = property("LOCKED", DataType::String, "fixed");
    locked->SetCaption(QStringLiteral("Alpha locked"));
    locked->SetReadOnly(1);
    other->AddPropertyEx(locked);

    auto properties = boost::make_shared<CPropertiesEx>();
    properties->AddCategory(general);
    properties->AddCategory(other);
    return properties;
}

QStringList captions(const QAbstractItemModel* model, const QModelIndex& parent = {})
{
    QStringList out;
    for (int row = 0; row < model->rowCount(parent); ++row)
        out << model->index(row, 0, parent).data().toString();
    return out;
}

// Records what the grid calls back, with the value each updated property had then.
class Recorder : public CCallbackItemUpdated, public CCallbackItemSelChanged
{
public:
    void OnItemUpdated(CPropertyEx* p) override
    {
        updated << (p ? p->GetTag() + "=" + p->GetValue().ToString() : QStringLiteral("null"));
        if (onUpdate)
            onUpdate();
    }
    void OnItemSelChanged(CPropertyEx* p) override
    {
        selected << (p ? p->GetTag() : QStringLiteral("null"));
    }
    QStringList updated;
    QStringList selected;
    std::function<void()> onUpdate;
};

// Sends a script of keys to whichever widget has the focus: "F2", "Enter", "Escape",
// "Space", "Down", or "type:TEXT".
void play(const QString& script)
{
    for (const QString& step : script.split(u'|', Qt::SkipEmptyParts))
    {
        QWidget* target = QApplication::focusWidget();
        QVERIFY2(target, qPrintable("no focus for " + step));
        if (step.startsWith(u"type:"))
        {
            // One key at a time: the first may open an editor that takes the rest.
            for (const QChar ch : step.mid(5))
                QTest::keyClicks(QApplication::focusWidget(), QString(ch));
            continue;
        }
        static const QHash<QString, Qt::Key> keys{{"F2", Qt::Key_F2},
                                                  {"Enter", Qt::Key_Return},
                                                  {"Escape", Qt::Key_Escape},
                                                  {"Space", Qt::Key_Space},
                                                  {"Down", Qt::Key_Down}};
        QVERIFY2(keys.contains(step), qPrintable(step));
        QTest::keyClick(target, keys.value(step));
    }
}

} // namespace

class TestPropertyGrid : public QObject
{
    Q_OBJECT

private:
    // A dialog with placeholder 100 and the grid made in its place as control 1000.
    struct Fixture
    {
        QWidget dialog;
        CPropertyExGridCtrl grid;
        Recorder recorder;
        boost::shared_ptr<CPropertiesEx> properties = sampleProperties();
        std::unique_ptr<QAbstractItemModelTester> tester;

        PropertyGridWidget* widget() const { return grid.gridWidget(); }
        PropertyGridView* view() const { return widget()->view(); }
        CPropertyEx* find(const QString& tag) const { return properties->FindProperty(tag).get(); }
        void select(const QString& tag) const
        {
            view()->setCurrentIndex(widget()->model()->indexOfTag(tag));
        }
    };

    std::unique_ptr<Fixture> makeFixture()
    {
        auto f = std::make_unique<Fixture>();
        auto* placeholder = new QLabel(&f->dialog);
        setControlId(placeholder, 100);
        placeholder->setGeometry(10, 10, 300, 400);
        f->dialog.resize(400, 450);
        if (!f->grid.CreatePropertyGrid(&f->dialog, 100, 1000))
            return nullptr;
        f->tester = std::make_unique<QAbstractItemModelTester>(
            f->widget()->model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        f->grid.SetCallbackUpdate(&f->recorder);
        f->grid.SetCallbackChange(&f->recorder);
        f->grid.SetDataToShow(f->properties, 1, 0);
        f->dialog.show();
        f->dialog.activateWindow();
        if (!QTest::qWaitForWindowActive(&f->dialog))
            return nullptr;
        f->view()->setFocus();
        return f;
    }

private slots:
    void init() { QTest::failOnWarning(QRegularExpression("^(?!This plugin does not support).*")); }

    void formatsValues_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("precision");
        QTest::addColumn<QString>("shown");
        QTest::newRow("double 6") << int(DataType::Double) << "1.23456789" << 6 << "1.234568";
        QTest::newRow("double 2") << int(DataType::Double) << "1.23456789" << 2 << "1.23";
        QTest::newRow("double 0 rounds") << int(DataType::Double) << "2.5001" << 0 << "3";
        QTest::newRow("negative precision") << int(DataType::Double) << "0.75" << -4 << "1";
        QTest::newRow("big double") << int(DataType::Double) << "1e6" << 1 << "1000000.0";
        QTest::newRow("not a number kept") << int(DataType::Double) << "n/a" << 6 << "n/a";
        QTest::newRow("integer as stored") << int(DataType::Integer) << "-17" << 2 << "-17";
        QTest::newRow("text as stored") << int(DataType::String) << "1.5" << 0 << "1.5";
    }
    void formatsValues()
    {
        QFETCH(int, type);
        QFETCH(QString, text);
        QFETCH(int, precision);
        QFETCH(QString, shown);
        QCOMPARE(formatPropertyValue(CDataBox(DataType(type), text), precision), shown);
    }

    void parsesInput_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("input");
        QTest::addColumn<bool>("accepted");
        QTest::addColumn<QString>("stored");
        const int i = int(DataType::Integer), d = int(DataType::Double);
        const int b = int(DataType::Boolean), c = int(DataType::Choice);
        QTest::newRow("int trimmed") << i << " 12 " << true << "12";
        QTest::newRow("int max") << i << "9223372036854775807" << true << "9223372036854775807";
        QTest::newRow("int min") << i << "-9223372036854775808" << true << "-9223372036854775808";
        QTest::newRow("int overflow") << i << "9223372036854775808" << false << "";
        QTest::newRow("int empty") << i << "" << false << "";
        QTest::newRow("int fraction") << i << "1.5" << false << "";
        QTest::newRow("double point") << d << "2.25" << true << "2.25";
        QTest::newRow("double comma") << d << "2,25" << true << "2.25";
        QTest::newRow("double exponent") << d << "1e-3" << true << "0.001";
        QTest::newRow("double grouped") << d << "1,000.5" << false << "";
        QTest::newRow("double infinite") << d << "1e400" << false << "";
        QTest::newRow("double nan") << d << "nan" << false << "";
        QTest::newRow("bool true") << b << "true" << true << "1";
        QTest::newRow("bool 0") << b << "0" << true << "0";
        QTest::newRow("bool other") << b << "maybe" << false << "";
        QTest::newRow("choice listed") << c << "C" << true << "C";
        QTest::newRow("choice unlisted") << c << "D" << false << "";
        QTest::newRow("choice case") << c << "c" << false << "";
    }
    void parsesInput()
    {
        QFETCH(int, type);
        QFETCH(QString, input);
        QFETCH(bool, accepted);
        QFETCH(QString, stored);
        CDataBox out(DataType::String, QStringLiteral("untouched"));
        QCOMPARE(parsePropertyValue(DataType(type), input, {"A", "B", "C"}, out), accepted);
        if (accepted)
        {
            QCOMPARE(int(out.GetType()), type);
            QCOMPARE(out.ToString(), stored);
        }
        else
        {
            QCOMPARE(out.ToString(), QStringLiteral("untouched"));
        }
    }

    void modelShowsCategoriesAndOrders()
    {
        PropertyGridModel model;
        QAbstractItemModelTester tester(&model,
                                        QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setProperties(sampleProperties());
        QCOMPARE(captions(&model), QStringList({"General", "Other"}));
        QCOMPARE(captions(&model, model.index(0, 0)),
                 QStringList({"NAME", "COUNT", "LENGTH", "ACTIVE", "KIND"}));
        QCOMPARE(captions(&model, model.index(1, 0)), QStringList({"BIG", "Alpha locked"}));
        QVERIFY(!model.propertyAt(model.index(0, 1)));
        QCOMPARE(model.propertyAt(model.index(1, 1, model.index(0, 0)))->GetTag(), "COUNT");

        model.setCategorized(false);
        QCOMPARE(captions(&model),
                 QStringList({"ACTIVE", "Alpha locked", "BIG", "COUNT", "KIND", "LENGTH", "NAME"}));
        QCOMPARE(model.rowCount(model.index(0, 0)), 0);
        model.setPrecision(1);
        model.setReadOnly(true);
        model.setCategorized(true);
        QCOMPARE(model.rowCount(), 2);
        model.clear();
        QCOMPARE(model.rowCount(), 0);
    }

    // Categories and properties that are null or empty are shown as far as they exist.
    void modelSkipsNullEntries()
    {
        auto properties = boost::make_shared<CPropertiesEx>();
        properties->GetCategoryVector()->push_back({});
        properties->AddCategory(boost::make_shared<CCategory>(QStringLiteral("Empty")));
        PropertyGridModel model;
        QAbstractItemModelTester tester(&model,
                                        QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setProperties(properties);
        QCOMPARE(captions(&model), QStringList({"Empty"}));
        QCOMPARE(model.rowCount(model.index(0, 0)), 0);
    }

    void createReplacesPlaceholder()
    {
        QWidget dialog;
        auto* layout = new QHBoxLayout(&dialog);
        auto* placeholder = new QLabel(&dialog);
        setControlId(placeholder, 100);
        layout->addWidget(placeholder);
        CPropertyExGridCtrl grid;
        QVERIFY(!grid.widget());
        QCOMPARE(grid.CreatePropertyGrid(&dialog, 99, 1000), 0);
        QVERIFY(!grid.widget());
        QCOMPARE(grid.CreatePropertyGrid(&dialog, 100, 1000), 1);
        QCOMPARE(findControlById(&dialog, 1000), grid.widget());
        QCOMPARE(layout->indexOf(grid.widget()), 0);
        QCOMPARE(layout->indexOf(placeholder), -1);
        dialog.show();
        QVERIFY(placeholder->isHidden());
        QVERIFY(grid.widget()->isVisible());
    }

    void createTakesGeometryAndSettings()
    {
        QWidget dialog;
        auto* placeholder = new QLabel(&dialog);
        setControlId(placeholder, 100);
        placeholder->setGeometry(12, 34, 200, 150);
        CPropertyExGridCtrl grid;
        grid.SetDoubleValuePrecision(2);
        grid.SetReadOnly(1);
        QVERIFY(grid.CreatePropertyGrid(&dialog, 100, 1000));
        QCOMPARE(grid.widget()->geometry(), QRect(12, 34, 200, 150));
        grid.SetDataToShow(sampleProperties(), 1, 0);
        PropertyGridModel* model = grid.gridWidget()->model();
        QCOMPARE(model->indexOfTag("LENGTH").siblingAtColumn(1).data().toString(), "1.23");
        QVERIFY(model->isReadOnly());
        QCOMPARE(grid.IsReadOnly(), 1);
    }

    void precisionChangesShownDoubles_data()
    {
        QTest::addColumn<int>("digits");
        QTest::addColumn<QString>("shown");
        QTest::newRow("6") << 6 << "1.234568";
        QTest::newRow("3") << 3 << "1.235";
        QTest::newRow("0") << 0 << "1";
    }
    void precisionChangesShownDoubles()
    {
        QFETCH(int, digits);
        QFETCH(QString, shown);
        auto f = makeFixture();
        QVERIFY(f);
        f->grid.SetDoubleValuePrecision(digits);
        const QModelIndex value = f->widget()->model()->indexOfTag("LENGTH").siblingAtColumn(1);
        QCOMPARE(value.data().toString(), shown);
        // The stored value keeps all its digits.
        QCOMPARE(f->find("LENGTH")->GetValue().ToString(), "1.23456789");
    }

    void editsWriteValueAndCallBack_data()
    {
        QTest::addColumn<QString>("tag");
        QTest::addColumn<QString>("script");
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QStringList>("updates");
        QTest::newRow("text") << "NAME"
                              << "F2|type:Valve|Enter"
                              << "Valve" << QStringList{"NAME=Valve"};
        QTest::newRow("text by typing") << "NAME"
                                        << "type:Tee|Enter"
                                        << "Tee" << QStringList{"NAME=Tee"};
        QTest::newRow("text escape") << "NAME"
                                     << "F2|type:xyz|Escape"
                                     << "Pipe" << QStringList{};
        QTest::newRow("text same") << "NAME"
                                   << "F2|Enter"
                                   << "Pipe" << QStringList{};
        QTest::newRow("integer") << "COUNT"
                                 << "F2|type:-17|Enter"
                                 << "-17" << QStringList{"COUNT=-17"};
        QTest::newRow("integer by Enter") << "COUNT"
                                          << "Enter|type:7|Enter"
                                          << "7" << QStringList{"COUNT=7"};
        QTest::newRow("integer letters") << "COUNT"
                                         << "F2|type:abc|Enter"
                                         << "42" << QStringList{};
        QTest::newRow("integer 64-bit")
            << "BIG"
            << "F2|type:-9223372036854775808|Enter"
            << "-9223372036854775808" << QStringList{"BIG=-9223372036854775808"};
        QTest::newRow("integer overflow") << "BIG"
                                          << "F2|type:9223372036854775808|Enter"
                                          << "9223372036854775807" << QStringList{};
        QTest::newRow("double") << "LENGTH"
                                << "F2|type:2,5|Enter"
                                << "2.5" << QStringList{"LENGTH=2.5"};
        QTest::newRow("double shown text kept") << "LENGTH"
                                                << "F2|Enter"
                                                << "1.23456789" << QStringList{};
        QTest::newRow("double rounded digits typed") << "LENGTH"
                                                     << "F2|type:1.234568|Enter"
                                                     << "1.23456789" << QStringList{};
        QTest::newRow("bool F2") << "ACTIVE"
                                 << "F2"
                                 << "0" << QStringList{"ACTIVE=0"};
        QTest::newRow("bool Space twice") << "ACTIVE"
                                          << "Space|Space"
                                          << "1" << QStringList{"ACTIVE=0", "ACTIVE=1"};
        QTest::newRow("choice") << "KIND"
                                << "F2|Down|Enter"
                                << "C" << QStringList{"KIND=C"};
        QTest::newRow("choice escape") << "KIND"
                                       << "F2|Down|Escape"
                                       << "B" << QStringList{};
    }
    void editsWriteValueAndCallBack()
    {
        QFETCH(QString, tag);
        QFETCH(QString, script);
        QFETCH(QString, stored);
        QFETCH(QStringList, updates);
        auto f = makeFixture();
        QVERIFY(f);
        f->select(tag);
        play(script);
        QCOMPARE(f->find(tag)->GetValue().ToString(), stored);
        QCOMPARE(f->recorder.updated, updates);
        QVERIFY(!f->view()->isEditing());
    }

    // Typing exactly what is shown keeps the full value (rows above); another text is a
    // real edit even when it has no more digits than are shown.
    void doubleEditOfShownValue()
    {
        auto f = makeFixture();
        QVERIFY(f);
        f->grid.SetDoubleValuePrecision(2);
        f->select("LENGTH");
        play("F2|type:1.24|Enter");
        QCOMPARE(f->find("LENGTH")->GetValue().ToString(), "1.24");
        QCOMPARE(f->recorder.updated, QStringList{"LENGTH=1.24"});
    }

    void clickOnBooleanBoxToggles()
    {
        auto f = makeFixture();
        QVERIFY(f);
        const QModelIndex value = f->widget()->model()->indexOfTag("ACTIVE").siblingAtColumn(1);
        const QRect cell = f->view()->visualRect(value);
        QStyleOptionViewItem option;
        option.initFrom(f->view());
        option.rect = cell;
        option.features |= QStyleOptionViewItem::HasCheckIndicator;
        const QRect box = f->view()->style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator,
                                                             &option, f->view());
        QTest::mouseClick(f->view()->viewport(), Qt::LeftButton, {}, box.center());
        QCOMPARE(f->find("ACTIVE")->GetValue().ToString(), "0");
        QCOMPARE(f->recorder.updated, QStringList{"ACTIVE=0"});
    }

    void doubleClickOpensEditor()
    {
        auto f = makeFixture();
        QVERIFY(f);
        const QModelIndex caption = f->widget()->model()->indexOfTag("NAME");
        const QPoint at = f->view()->visualRect(caption).center();
        // A widget double click arrives as press, release, double click.
        QTest::mouseClick(f->view()->viewport(), Qt::LeftButton, {}, at);
        QVERIFY(!f->view()->isEditing());
        QTest::mouseDClick(f->view()->viewport(), Qt::LeftButton, {}, at);
        QVERIFY(f->view()->isEditing());
        auto* editor = qobject_cast<QLineEdit*>(QApplication::focusWidget());
        QVERIFY(editor);
        QCOMPARE(editor->text(), "Pipe");
    }

    void readOnlyBlocksEdits_data()
    {
        QTest::addColumn<bool>("gridReadOnly");
        QTest::addColumn<QString>("tag");
        QTest::addColumn<QString>("script");
        QTest::newRow("grid text") << true << "NAME"
                                   << "F2|type:x|Enter";
        QTest::newRow("grid typing") << true << "COUNT"
                                     << "type:5|Enter";
        QTest::newRow("grid bool F2") << true << "ACTIVE"
                                      << "F2";
        QTest::newRow("grid bool Space") << true << "ACTIVE"
                                         << "Space";
        QTest::newRow("grid choice") << true << "KIND"
                                     << "F2|Down|Enter";
        QTest::newRow("property") << false << "LOCKED"
                                  << "F2|type:x|Enter";
    }
    void readOnlyBlocksEdits()
    {
        QFETCH(bool, gridReadOnly);
        QFETCH(QString, tag);
        QFETCH(QString, script);
        auto f = makeFixture();
        QVERIFY(f);
        f->grid.SetReadOnly(gridReadOnly);
        const QString before = f->find(tag)->GetValue().ToString();
        f->select(tag);
        play(script);
        QCOMPARE(f->find(tag)->GetValue().ToString(), before);
        QVERIFY(f->recorder.updated.isEmpty());
    }

    void readOnlyClosesOpenEditor()
    {
        auto f = makeFixture();
        QVERIFY(f);
        f->select("NAME");
        play("F2|type:Changed");
        QVERIFY(f->view()->isEditing());
        f->grid.SetReadOnly(1);
        QVERIFY(!f->view()->isEditing());
        QCOMPARE(f->find("NAME")->GetValue().ToString(), "Pipe");
        f->grid.SetReadOnly(0);
        f->view()->setFocus();
        play("F2|type:Open|Enter");
        QCOMPARE(f->find("NAME")->GetValue().ToString(), "Open");
    }

    void selectionCallsBack()
    {
        auto f = makeFixture();
        QVERIFY(f);
        f->select("COUNT");
        QTest::keyClick(f->view(), Qt::Key_Down);
        f->view()->setCurrentIndex(f->widget()->model()->index(1, 0)); // category "Other"
        QCOMPARE(f->recorder.selected, QStringList({"COUNT", "LENGTH", "null"}));

        // Shown again: the same tag stays selected only when asked for.
        f->select("KIND");
        f->recorder.selected.clear();
        f->grid.SetDataToShow(sampleProperties(), 1, 1);
        QCOMPARE(f->recorder.selected, QStringList({"null", "KIND"}));
        QCOMPARE(f->widget()->currentProperty()->GetTag(), "KIND");
        f->grid.SetDataToShow(sampleProperties(), 1, 0);
        QVERIFY(!f->widget()->currentProperty());
        f->grid.ClearGrid();
        QCOMPARE(f->recorder.selected, QStringList({"null", "KIND", "null"}));
        QCOMPARE(f->widget()->model()->rowCount(), 0);
    }

    void enterFoldsCategoryAndCollapsedStart()
    {
        auto f = makeFixture();
        QVERIFY(f);
        f->grid.SetDataToShow(f->properties, 0, 0);
        const QModelIndex general = f->widget()->model()->index(0, 0);
        QVERIFY(!f->view()->isExpanded(general));
        f->view()->setCurrentIndex(general);
        QTest::keyClick(f->view(), Qt::Key_Return);
        QVERIFY(f->view()->isExpanded(general));
        QTest::keyClick(f->view(), Qt::Key_Return);
        QVERIFY(!f->view()->isExpanded(general));
    }

    // A callback may show something else in the grid while the edit is being committed.
    void callbackMayReplaceContent()
    {
        auto f = makeFixture();
        QVERIFY(f);
        f->recorder.onUpdate = [&f] { f->grid.SetDataToShow(sampleProperties(), 1, 0); };
        f->select("NAME");
        f->properties.reset(); // the grid holds the only reference now
        play("F2|type:Gone|Enter");
        QCOMPARE(f->recorder.updated, QStringList{"NAME=Gone"});
        QCOMPARE(f->widget()->model()->indexOfTag("NAME").siblingAtColumn(1).data().toString(),
                 "Pipe");
    }

    void toolBarSwitchesOrder()
    {
        auto f = makeFixture();
        QVERIFY(f);
        QVERIFY(f->widget()->toolBar()->isHidden());
        f->grid.ShowToolBar(1);
        QVERIFY(f->widget()->toolBar()->isVisible());
        f->select("BIG");
        f->recorder.selected.clear();
        const QList<QAction*> actions = f->widget()->toolBar()->actions();
        QCOMPARE(actions.size(), 2);
        actions[1]->trigger();
        QVERIFY(!f->widget()->isCategorized());
        QCOMPARE(f->widget()->model()->rowCount(), 7);
        QCOMPARE(f->widget()->currentProperty()->GetTag(), "BIG");
        QVERIFY(f->recorder.selected.isEmpty());
        actions[0]->trigger();
        QCOMPARE(captions(f->widget()->model()), QStringList({"General", "Other"}));
    }

    void deletingControlRemovesWidget()
    {
        QWidget dialog;
        auto* placeholder = new QLabel(&dialog);
        setControlId(placeholder, 100);
        QPointer<QWidget> widget;
        {
            CPropertyExGridCtrl grid;
            QVERIFY(grid.CreatePropertyGrid(&dialog, 100, 1000));
            widget = grid.widget();
        }
        QVERIFY(widget.isNull());
        // And a widget deleted with its dialog leaves the control harmless.
        CPropertyExGridCtrl grid;
        {
            QWidget other;
            auto* p = new QLabel(&other);
            setControlId(p, 100);
            QVERIFY(grid.CreatePropertyGrid(&other, 100, 1000));
        }
        QVERIFY(!grid.widget());
        grid.SetDataToShow(sampleProperties(), 1, 0);
        grid.ClearGrid();
    }
};

QTEST_MAIN(TestPropertyGrid)
#include "tst_propertygrid.moc"
