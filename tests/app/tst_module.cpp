// The module's exported face, end to end: the real editor on a copy of the sample store.

#include "app/CatalogEditor.h"

#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QDirIterator>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

namespace
{

bool copyFolder(const QString& from, const QString& to)
{
    QDirIterator it(from, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
    {
        const QString source = it.next();
        const QString target = to + source.mid(from.size());
        if (!QDir().mkpath(QFileInfo(target).absolutePath()) || !QFile::copy(source, target))
            return false;
    }
    return true;
}

} // namespace

class TestModule : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void editorOpensOnTheStore_data();
    void editorOpensOnTheStore();

private:
    QTemporaryDir m_store;
};

void TestModule::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
    QVERIFY(m_store.isValid());
    QVERIFY(copyFolder(QStringLiteral(ZEVX_SAMPLES_DIR), m_store.path()));
    // The module's catalog manager is its own; it finds the store as inside the host.
    qputenv("ZEVX_CATALOG_ROOT", QFile::encodeName(m_store.path()));
}

void TestModule::editorOpensOnTheStore_data()
{
    QTest::addColumn<QString>("reference");
    QTest::addColumn<int>("showHidden");
    QTest::addColumn<QStringList>("shown"); // the dialog, its selected catalog, the catalogs listed

    const QString editor = QStringLiteral("CCatalogEditorDlg");
    QTest::newRow("reference in another case")
        << "poles" << 0 << QStringList{editor, "Stupovi", "4"};
    QTest::newRow("no reference") << "" << 0 << QStringList{editor, "Kabeli", "4"};
    QTest::newRow("hidden catalog not offered")
        << "SWITCHGEAR" << 0 << QStringList{editor, "Kabeli", "4"};
    QTest::newRow("hidden catalog offered")
        << "SWITCHGEAR" << 1 << QStringList{editor, "Sklopni uređaji*** HIDDEN ***", "5"};
}

void TestModule::editorOpensOnTheStore()
{
    QFETCH(QString, reference);
    QFETCH(int, showHidden);
    QFETCH(QStringList, shown);

    // Closes whatever comes up modally, noting what it was and what the combo (id 104) showed.
    QStringList seen;
    QTimer closer;
    connect(&closer, &QTimer::timeout, this,
            [&]
            {
                if (auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget()))
                {
                    seen << QString::fromLatin1(dialog->metaObject()->className());
                    for (QComboBox* combo : dialog->findChildren<QComboBox*>())
                        if (combo->property("controlId").toInt() == 104)
                            seen << combo->currentText() << QString::number(combo->count());
                    dialog->reject();
                }
            });
    closer.start(0);

    const std::wstring wide = reference.toStdWString();
    ZEVGis::Data::CCatalogEditor::Editor(reference.isEmpty() ? nullptr : wide.c_str(), showHidden);
    closer.stop();

    QCOMPARE(seen, shown);
}

QTEST_MAIN(TestModule)
#include "tst_module.moc"
