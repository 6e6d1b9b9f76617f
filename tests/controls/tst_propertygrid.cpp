#include "catalog/ModuleConfiguration.h"
#include "catalog/PropertiesEx.h"
#include "controls/ControlId.h"
#include "controls/PropertyExGridCtrl.h"
#include "controls/PropertyGridModel.h"
#include "controls/PropertyGridWidget.h"
#include "controls/PropertyValueText.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QTest>
#include <boost/make_shared.hpp>

using namespace ZEVGis::Data;

namespace
{

boost::shared_ptr<CPropertyEx> property(const QString& tag, DataType type, const QString& text)
{
    return boost::make_shared<CPropertyEx>(tag, CDataBox(type, text));
}

// Two categories holding one property of every kind, a null and an empty category.
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
    properties->GetCategoryVector()->push_back({});
    properties->AddCategory(other);
    properties->AddCategory(boost::make_shared<CCategory>(QStringLiteral("Empty")));
    return properties;
}

QLocale english()
{
    return QLocale(QLocale::English, QLocale::UnitedStates);
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
        updated << p->GetTag() + "=" + p->GetValue().ToString();
        if (onUpdate)
            onUpdate();
    }
    void OnItemSelChanged(CPropertyEx* p) override { selected << (p ? p->GetTag() : "null"); }
    QStringList updated;
    QStringList selected;
    std::function<void()> onUpdate;
};

// Sends keys to whichever widget has the focus: "F2", "Enter", "Escape", "Space", "Down",
// "Tab" or "type:TEXT" (one key at a time: the first may open an editor that takes the rest).
void play(const QString& script)
{
    static const QHash<QString, Qt::Key> keys{{"F2", Qt::Key_F2},         {"Enter", Qt::Key_Return},
                                              {"Escape", Qt::Key_Escape}, {"Space", Qt::Key_Space},
                                              {"Down", Qt::Key_Down},     {"Tab", Qt::Key_Tab}};
    for (const QString& step : script.split(u'|', Qt::SkipEmptyParts))
    {
        QVERIFY2(QApplication::focusWidget(), qPrintable("no focus for " + step));
        if (step.startsWith(u"type:"))
        {
            for (const QChar ch : step.mid(5))
                QTest::keyClicks(QApplication::focusWidget(), QString(ch));
            continue;
        }
        QVERIFY2(keys.contains(step), qPrintable(step));
        QTest::keyClick(QApplication::focusWidget(), keys.value(step));
    }
}

// A dialog with placeholder 100 and the grid made in its place as control 1000, its model
// checked by QAbstractItemModelTester throughout.
struct Fixture
{
    QWidget dialog;
    CPropertyExGridCtrl grid;
    Recorder recorder;
    boost::shared_ptr<CPropertiesEx> properties = sampleProperties();
    std::unique_ptr<QAbstractItemModelTester> tester;

    PropertyGridWidget* widget() const { return grid.gridWidget(); }
    PropertyGridModel* model() const { return widget()->model(); }
    PropertyGridView* view() const { return widget()->view(); }
    CPropertyEx* find(const QString& tag) const { return properties->FindProperty(tag).get(); }
    QModelIndex value(const QString& tag) const
    {
        return model()->indexOfTag(tag).siblingAtColumn(1);
    }
    void select(const QString& tag) const { view()->setCurrentIndex(model()->indexOfTag(tag)); }

    bool start()
    {
        auto* placeholder = new QLabel(&dialog);
        setControlId(placeholder, 100);
        placeholder->setGeometry(10, 10, 300, 400);
        dialog.resize(400, 450);
        if (!grid.CreatePropertyGrid(&dialog, 100, 1000))
            return false;
        tester = std::make_unique<QAbstractItemModelTester>(
            model(), QAbstractItemModelTester::FailureReportingMode::QtTest);
        grid.SetCallbackUpdate(&recorder);
        grid.SetCallbackChange(&recorder);
        grid.SetDataToShow(properties, 1, 0);
        dialog.show();
        dialog.activateWindow();
        view()->setFocus();
        return QTest::qWaitForWindowActive(&dialog);
    }
};

} // namespace

class TestPropertyGrid : public QObject
{
    Q_OBJECT

private slots:
    // The grid writes numbers in the default locale's way; the tests choose it themselves.
    void initTestCase() { QLocale::setDefault(english()); }
    void init() { QTest::failOnWarning(QRegularExpression("^(?!This plugin does not support).*")); }

    // Typed text read back as a value (accepted or refused, stored form), and how the same
    // text is shown when stored, with doubles at two digits.
    void valueText_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("stored"); // empty: refused
        QTest::addColumn<QString>("shown");
        const int i = int(DataType::Integer), d = int(DataType::Double);
        const int b = int(DataType::Boolean), c = int(DataType::Choice);
        // clang-format off
        QTest::newRow("int trimmed")     << i << " 12 "                 << "12"                   << " 12 ";
        QTest::newRow("int min")         << i << "-9223372036854775808" << "-9223372036854775808" << "-9223372036854775808";
        QTest::newRow("int overflow")    << i << "9223372036854775808"  << ""                     << "9223372036854775808";
        QTest::newRow("int fraction")    << i << "1.5"                  << ""                     << "1.5";
        QTest::newRow("double rounded")  << d << "1.23456789"           << "1.23456789"           << "1.23";
        QTest::newRow("double comma")    << d << "2,255"                << "2.255"                << "2.25";
        QTest::newRow("double exponent") << d << "1e6"                  << "1e+06"                << "1000000";
        QTest::newRow("double grouped")  << d << "1,000.5"              << ""                     << "1,000.5";
        QTest::newRow("double infinite") << d << "1e400"                << ""                     << "1e400";
        QTest::newRow("double nan")      << d << "nan"                  << ""                     << "nan";
        QTest::newRow("bool true")       << b << "true"                 << "1"                    << "true";
        QTest::newRow("bool other")      << b << "maybe"                << ""                     << "maybe";
        QTest::newRow("choice listed")   << c << "C"                    << "C"                    << "C";
        QTest::newRow("choice case")     << c << "c"                    << ""                     << "c";
        // clang-format on
    }
    void valueText()
    {
        QFETCH(int, type);
        QFETCH(QString, input);
        QFETCH(QString, stored);
        QFETCH(QString, shown);
        CDataBox out(DataType::String, QStringLiteral("untouched"));
        QCOMPARE(parsePropertyValue(DataType(type), input, {"A", "B", "C"}, out),
                 !stored.isEmpty());
        QCOMPARE(out.ToString(), stored.isEmpty() ? QStringLiteral("untouched") : stored);
        if (!stored.isEmpty())
            QCOMPARE(int(out.GetType()), type);
        QCOMPARE(formatPropertyValue(CDataBox(DataType(type), input), 2, english()), shown);
    }

    // Doubles as stored, shown with at most `precision` decimals in the user's way.
    void doublesShown_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<int>("precision");
        QTest::addColumn<QString>("english");
        QTest::addColumn<QString>("croatian");
        // clang-format off
        QTest::newRow("whole number")      << "240"        << 6 << "240"      << "240";
        QTest::newRow("one decimal")       << "185.5"      << 6 << "185.5"    << "185,5";
        QTest::newRow("rounded to six")    << "1.23456789" << 6 << "1.234568" << "1,234568";
        // Croatian writes its minus sign as U+2212, and reads it back.
        QTest::newRow("negative")          << "-3.75"      << 6 << "-3.75"    << "\u22123,75";
        QTest::newRow("no group digits")   << "1234567.25" << 6 << "1234567.25" << "1234567,25";
        QTest::newRow("rounds to nothing") << "-1e-7"      << 6 << "0"        << "0";
        QTest::newRow("rounds up")         << "0.9999999"  << 6 << "1"        << "1";
        QTest::newRow("precision 1")       << "2.25"       << 1 << "2.3"      << "2,3";
        QTest::newRow("precision 0")       << "2.75"       << 0 << "3"        << "3";
        QTest::newRow("not a number")      << "abc"        << 6 << "abc"      << "abc";
        // clang-format on
    }
    void doublesShown()
    {
        QFETCH(QString, stored);
        QFETCH(int, precision);
        QFETCH(QString, english);
        QFETCH(QString, croatian);
        const CDataBox value(DataType::Double, stored);
        QCOMPARE(formatPropertyValue(value, precision, ::english()), english);
        QCOMPARE(formatPropertyValue(value, precision, QLocale(QLocale::Croatian, QLocale::Croatia)),
                 croatian);
        // What is shown reads back as the same number, whatever the shown text's locale
        // (the shown text is exactly what the grid's editor starts with).
        CDataBox read;
        if (stored != u"abc" && precision == 6 && !stored.contains(u'e') && stored.size() < 9)
        {
            QVERIFY(parsePropertyValue(DataType::Double, croatian, {}, read));
            QCOMPARE(read.ToDouble(), value.ToDouble());
        }
    }

    // Under a Croatian locale the grid shows decimal commas; the stored value keeps every
    // digit until the user types another number, which is stored in the catalog's form.
    void croatianGridKeepsStoredValue()
    {
        QLocale::setDefault(QLocale(QLocale::Croatian, QLocale::Croatia));
        Fixture f;
        const bool started = f.start();
        const QString shown = f.value("LENGTH").data().toString();
        f.select("LENGTH");
        play("F2|Enter");
        const QString kept = f.find("LENGTH")->GetValue().ToString();
        play("F2|type:2,75|Enter");
        QLocale::setDefault(english());
        QVERIFY(started);
        QCOMPARE(shown, "1,234568");
        QCOMPARE(kept, "1.23456789");
        QCOMPARE(f.find("LENGTH")->GetValue().ToString(), "2.75");
        QCOMPARE(f.recorder.updated, QStringList{"LENGTH=2.75"});
    }

    // With nothing to show the grid says what to do instead of staying a blank box; a
    // shown set of properties, even an empty one, takes the hint away.
    void hintWhenNothingShown()
    {
        Fixture f;
        QVERIFY(f.start());
        const auto inkOf = [&f] {
            const QImage image = f.view()->viewport()->grab().toImage();
            const QRgb base = image.pixel(image.width() - 2, image.height() - 2);
            int ink = 0;
            for (int y = 0; y < image.height(); ++y)
                for (int x = 0; x < image.width(); ++x)
                    ink += image.pixel(x, y) != base ? 1 : 0;
            return ink;
        };
        QVERIFY(f.view()->hint().isEmpty());
        f.grid.ClearGrid();
        QCOMPARE(f.view()->hint(), ZEVGis::CModuleConfiguration::Instance()->GetMsg(70000));
        QVERIFY2(inkOf() > 50, "the hint is not drawn");
        f.grid.SetDataToShow(boost::make_shared<CPropertiesEx>(), 1, 0);
        QVERIFY(f.view()->hint().isEmpty());
        QCOMPARE(inkOf(), 0);
        f.grid.SetDataToShow({}, 1, 0);
        QVERIFY(!f.view()->hint().isEmpty());
    }

    void modelRowsAndOrder()
    {
        PropertyGridModel model;
        QAbstractItemModelTester tester(&model,
                                        QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.setProperties(sampleProperties());
        QCOMPARE(captions(&model), QStringList({"General", "Other", "Empty"}));
        QCOMPARE(captions(&model, model.index(0, 0)),
                 QStringList({"NAME", "COUNT", "LENGTH", "ACTIVE", "KIND"}));
        QCOMPARE(captions(&model, model.index(1, 0)), QStringList({"BIG", "Alpha locked"}));
        QCOMPARE(model.rowCount(model.index(2, 0)), 0);
        QVERIFY(!model.propertyAt(model.index(0, 1)));

        model.setCategorized(false);
        QCOMPARE(captions(&model),
                 QStringList({"ACTIVE", "Alpha locked", "BIG", "COUNT", "KIND", "LENGTH", "NAME"}));
        QCOMPARE(model.rowCount(model.index(0, 0)), 0);
        model.setPrecision(1);
        model.setReadOnly(true);
        model.setCategorized(true);
        model.clear();
        QCOMPARE(model.rowCount(), 0);
    }

    void createInPlaceOfPlaceholder()
    {
        QWidget dialog;
        auto* layout = new QHBoxLayout(&dialog);
        auto* placeholder = new QLabel(&dialog);
        setControlId(placeholder, 100);
        layout->addWidget(placeholder);
        placeholder->setGeometry(12, 34, 200, 150);
        auto grid = std::make_unique<CPropertyExGridCtrl>();
        QCOMPARE(grid->CreatePropertyGrid(&dialog, 99, 1000), 0);
        // Settings made before the grid exists reach it.
        grid->SetDoubleValuePrecision(2);
        grid->SetReadOnly(1);
        QCOMPARE(grid->CreatePropertyGrid(&dialog, 100, 1000), 1);
        QCOMPARE(findControlById(&dialog, 1000), grid->widget());
        QCOMPARE(layout->indexOf(grid->widget()), 0);
        QCOMPARE(layout->indexOf(placeholder), -1);
        QCOMPARE(grid->widget()->geometry(), QRect(12, 34, 200, 150));
        QVERIFY(placeholder->isHidden());
        grid->SetDataToShow(sampleProperties(), 1, 0);
        PropertyGridModel* model = grid->gridWidget()->model();
        QCOMPARE(model->indexOfTag("LENGTH").siblingAtColumn(1).data().toString(), "1.23");
        QVERIFY(model->isReadOnly());
        grid->SetDoubleValuePrecision(0);
        QCOMPARE(model->indexOfTag("LENGTH").siblingAtColumn(1).data().toString(), "1");

        // The control takes its widget with it, and outlives a widget deleted with its dialog.
        QPointer<QWidget> widget = grid->widget();
        grid.reset();
        QVERIFY(widget.isNull());
        CPropertyExGridCtrl orphan;
        {
            QWidget other;
            setControlId(new QLabel(&other), 100);
            QVERIFY(orphan.CreatePropertyGrid(&other, 100, 1000));
        }
        QVERIFY(!orphan.widget());
        orphan.SetDataToShow(sampleProperties(), 1, 0);
        orphan.ClearGrid();
    }

    // Keys played on the selected row: the value stored afterwards and the update callbacks.
    void keyboardEdits_data()
    {
        QTest::addColumn<bool>("readOnly");
        QTest::addColumn<QString>("tag");
        QTest::addColumn<QString>("script");
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QStringList>("updates");
        const QString big = "9223372036854775807";
        // clang-format off
        QTest::newRow("text")             << false << "NAME"   << "F2|type:Valve|Enter" << "Valve" << QStringList{"NAME=Valve"};
        QTest::newRow("text by typing")   << false << "NAME"   << "type:Tee|Enter"      << "Tee"   << QStringList{"NAME=Tee"};
        QTest::newRow("text by Tab")      << false << "NAME"   << "F2|type:Cap|Tab"     << "Cap"   << QStringList{"NAME=Cap"};
        QTest::newRow("text escape")      << false << "NAME"   << "F2|type:xyz|Escape"  << "Pipe"  << QStringList{};
        QTest::newRow("text same")        << false << "NAME"   << "F2|Enter"            << "Pipe"  << QStringList{};
        QTest::newRow("integer by Enter") << false << "COUNT"  << "Enter|type:-7|Enter" << "-7"    << QStringList{"COUNT=-7"};
        QTest::newRow("integer letters")  << false << "COUNT"  << "F2|type:abc|Enter"   << "42"    << QStringList{};
        QTest::newRow("integer overflow") << false << "BIG"    << "F2|type:" + big.chopped(1) + "8|Enter" << big << QStringList{};
        QTest::newRow("double comma")     << false << "LENGTH" << "F2|type:2,5|Enter"   << "2.5"   << QStringList{"LENGTH=2.5"};
        // The editor starts with the rounded text; giving it back keeps every digit, while
        // another text is a real edit even with no more digits than are shown.
        QTest::newRow("double shown text kept")    << false << "LENGTH" << "F2|Enter"               << "1.23456789" << QStringList{};
        QTest::newRow("double shown digits typed") << false << "LENGTH" << "F2|type:1.234568|Enter" << "1.23456789" << QStringList{};
        QTest::newRow("double other digits")       << false << "LENGTH" << "F2|type:1.234567|Enter" << "1.234567"   << QStringList{"LENGTH=1.234567"};
        QTest::newRow("bool F2")          << false << "ACTIVE" << "F2"                  << "0"     << QStringList{"ACTIVE=0"};
        QTest::newRow("bool Space twice") << false << "ACTIVE" << "Space|Space"         << "1"     << QStringList{"ACTIVE=0", "ACTIVE=1"};
        QTest::newRow("choice")           << false << "KIND"   << "F2|Down|Enter"       << "C"     << QStringList{"KIND=C"};
        QTest::newRow("choice escape")    << false << "KIND"   << "F2|Down|Escape"      << "B"     << QStringList{};
        QTest::newRow("locked property")  << false << "LOCKED" << "F2|type:x|Enter"     << "fixed" << QStringList{};
        QTest::newRow("read-only text")   << true  << "NAME"   << "F2|type:x|Enter"     << "Pipe"  << QStringList{};
        QTest::newRow("read-only typing") << true  << "COUNT"  << "type:5|Enter"        << "42"    << QStringList{};
        QTest::newRow("read-only bool")   << true  << "ACTIVE" << "F2|Space"            << "1"     << QStringList{};
        QTest::newRow("read-only choice") << true  << "KIND"   << "F2|Down|Enter"       << "B"     << QStringList{};
        // clang-format on
    }
    void keyboardEdits()
    {
        QFETCH(bool, readOnly);
        QFETCH(QString, tag);
        QFETCH(QString, script);
        QFETCH(QString, stored);
        QFETCH(QStringList, updates);
        Fixture f;
        QVERIFY(f.start());
        f.grid.SetReadOnly(readOnly);
        f.select(tag);
        play(script);
        QCOMPARE(f.find(tag)->GetValue().ToString(), stored);
        QCOMPARE(f.recorder.updated, updates);
        QVERIFY(!f.view()->isEditing());
    }

    void mouseEdits()
    {
        Fixture f;
        QVERIFY(f.start());
        // A click on a yes/no box toggles it.
        const QModelIndex active = f.value("ACTIVE");
        QStyleOptionViewItem option;
        option.initFrom(f.view());
        option.rect = f.view()->visualRect(active);
        option.features |= QStyleOptionViewItem::HasCheckIndicator;
        const QRect box = f.view()->style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator,
                                                            &option, f.view());
        QTest::mouseClick(f.view()->viewport(), Qt::LeftButton, {}, box.center());
        QCOMPARE(f.recorder.updated, QStringList{"ACTIVE=0"});

        // A double click on a caption opens the value's editor (a widget double click
        // arrives as press, release, double click).
        const QPoint at = f.view()->visualRect(f.model()->indexOfTag("NAME")).center();
        QTest::mouseClick(f.view()->viewport(), Qt::LeftButton, {}, at);
        QVERIFY(!f.view()->isEditing());
        QTest::mouseDClick(f.view()->viewport(), Qt::LeftButton, {}, at);
        auto* editor = qobject_cast<QLineEdit*>(QApplication::focusWidget());
        QVERIFY(editor);
        QCOMPARE(editor->text(), "Pipe");
    }

    void readOnlyClosesOpenEditor()
    {
        Fixture f;
        QVERIFY(f.start());
        f.select("NAME");
        play("F2|type:Changed");
        QVERIFY(f.view()->isEditing());
        f.grid.SetReadOnly(1);
        QVERIFY(!f.view()->isEditing());
        QCOMPARE(f.find("NAME")->GetValue().ToString(), "Pipe");
        f.grid.SetReadOnly(0);
        f.view()->setFocus();
        play("F2|type:Open|Enter");
        QCOMPARE(f.find("NAME")->GetValue().ToString(), "Open");
    }

    void selectionCallsBack()
    {
        Fixture f;
        QVERIFY(f.start());
        f.select("COUNT");
        QTest::keyClick(f.view(), Qt::Key_Down);
        f.view()->setCurrentIndex(f.model()->index(1, 0)); // category "Other"
        QCOMPARE(f.recorder.selected, QStringList({"COUNT", "LENGTH", "null"}));

        // Shown again: the same tag stays selected only when asked for.
        f.select("KIND");
        f.recorder.selected.clear();
        f.grid.SetDataToShow(sampleProperties(), 1, 1);
        QCOMPARE(f.widget()->currentProperty()->GetTag(), "KIND");
        f.grid.SetDataToShow(sampleProperties(), 1, 0);
        QVERIFY(!f.widget()->currentProperty());
        f.grid.ClearGrid();
        QCOMPARE(f.recorder.selected, QStringList({"null", "KIND", "null"}));
    }

    void enterFoldsCategory()
    {
        Fixture f;
        QVERIFY(f.start());
        f.grid.SetDataToShow(f.properties, 0, 0);
        const QModelIndex general = f.model()->index(0, 0);
        QVERIFY(!f.view()->isExpanded(general));
        f.view()->setCurrentIndex(general);
        QTest::keyClick(f.view(), Qt::Key_Return);
        QVERIFY(f.view()->isExpanded(general));
        QTest::keyClick(f.view(), Qt::Key_Return);
        QVERIFY(!f.view()->isExpanded(general));
    }

    // Categories run across both columns; the caption column fits the longest caption
    // within a quarter and a half of the grid's width.
    void captionColumnFitsCaptions_data()
    {
        QTest::addColumn<QString>("caption"); // of the LOCKED property
        QTest::addColumn<QString>("expected"); // "quarter", "half" or "fits"
        QTest::newRow("short captions: a quarter") << "A" << "quarter";
        QTest::newRow("a caption longer than the grid: half") << QString(80, QChar('W')) << "half";
        QTest::newRow("a medium caption fits") << "Presjek [mm²]" << "fits";
    }

    void captionColumnFitsCaptions()
    {
        QFETCH(QString, caption);
        QFETCH(QString, expected);
        Fixture f;
        if (expected == "quarter")
            for (const auto& category : *f.properties->GetCategoryVector())
                if (category)
                    for (auto& [tag, p] : *category->GetPropertyExMapByTag())
                        p->SetCaption(QStringLiteral("A"));
        f.find("LOCKED")->SetCaption(caption);
        QVERIFY(f.start());
        const int width = f.view()->viewport()->width();
        const int column = f.view()->columnWidth(PropertyGridModel::CaptionColumn);
        if (expected == "quarter")
            QCOMPARE(column, width / 4);
        else if (expected == "half")
            QCOMPARE(column, width / 2);
        else
        {
            QVERIFY2(column > width / 4 && column < width / 2, qPrintable(QString("%1 of %2").arg(column).arg(width)));
            QVERIFY(column >= f.view()->fontMetrics().horizontalAdvance(caption) + 2 * f.view()->indentation());
        }
        for (int row = 0; row < f.model()->rowCount(); ++row)
            QVERIFY(f.view()->isFirstColumnSpanned(row, {}));
    }

    // A callback may show something else in the grid while the edit is being committed.
    void callbackMayReplaceContent()
    {
        Fixture f;
        QVERIFY(f.start());
        f.recorder.onUpdate = [&f] { f.grid.SetDataToShow(sampleProperties(), 1, 0); };
        f.select("NAME");
        f.properties.reset(); // the grid holds the only reference now
        play("F2|type:Gone|Enter");
        QCOMPARE(f.recorder.updated, QStringList{"NAME=Gone"});
        QCOMPARE(f.value("NAME").data().toString(), "Pipe");
    }
};

QTEST_MAIN(TestPropertyGrid)
#include "tst_propertygrid.moc"
