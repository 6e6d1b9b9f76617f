#include "host/HostServices.h"
#include "host/QtHostServices.h"
#include "host/ScriptedHost.h"

#include <QApplication>
#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <functional>
#include <stdexcept>

using namespace ZEVGis::Host;

namespace
{

// Runs `action` on the modal widget that is up once the next event loop turns.
void onNextModal(std::function<void(QWidget*)> action)
{
    QTimer::singleShot(0, qApp,
                       [action]
                       {
                           QWidget* modal = QApplication::activeModalWidget();
                           QVERIFY(modal);
                           action(modal);
                       });
}

} // namespace

class TestHostServices : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QStandardPaths::setTestModeEnabled(true);
        QApplication::setApplicationDisplayName(QStringLiteral("Test host"));
    }

    void scriptedQuestions_data();
    void scriptedQuestions();
    void scriptedFileDialogs();
    void installAndRestore();
    void resourceScopePopsOnException();

    void qtQuestion_data();
    void qtQuestion();
    void qtAlert();
    void qtWaitCursorNests();
    void qtOpenFileDialog();
};

void TestHostServices::scriptedQuestions_data()
{
    QTest::addColumn<QList<bool>>("script");
    QTest::addColumn<int>("asked");
    QTest::addColumn<QList<bool>>("answers");
    QTest::addColumn<int>("unscripted");

    QTest::newRow("empty script answers No")
        << QList<bool>{} << 2 << QList<bool>{false, false} << 2;
    QTest::newRow("script in order")
        << QList<bool>{true, false, true} << 3 << QList<bool>{true, false, true} << 0;
    QTest::newRow("script runs out")
        << QList<bool>{true} << 3 << QList<bool>{true, false, false} << 2;
}

void TestHostServices::scriptedQuestions()
{
    QFETCH(QList<bool>, script);
    QFETCH(int, asked);
    QFETCH(QList<bool>, answers);
    QFETCH(int, unscripted);

    ScriptedHost host;
    for (bool answer : script)
        host.queueAnswer(answer);
    QList<bool> given;
    for (int i = 0; i < asked; ++i)
        given.append(host.askYesNo(QStringLiteral("Q%1").arg(i), QStringLiteral("caption")));

    QCOMPARE(given, answers);
    QCOMPARE(host.questions().size(), asked);
    QCOMPARE(host.questions().last().text, QStringLiteral("Q%1").arg(asked - 1));
    QCOMPARE(host.questions().first().caption, QStringLiteral("caption"));
    QCOMPARE(host.unscriptedQuestions(), unscripted);
    QCOMPARE(host.pendingAnswers(), 0);
    QVERIFY(host.alerts().isEmpty());
}

void TestHostServices::scriptedFileDialogs()
{
    ScriptedHost host;
    host.queueOpenFileName(QStringLiteral("/in.xml"));
    host.queueSaveFileName(QStringLiteral("/out.xml"));

    // Open and save answers come from their own queues, whatever the order of asking.
    QCOMPARE(host.getSaveFileName(QStringLiteral("Save"), QStringLiteral("*.xml")),
             QStringLiteral("/out.xml"));
    QCOMPARE(host.getOpenFileName(QStringLiteral("Open"), QStringLiteral("*.xml")),
             QStringLiteral("/in.xml"));
    QCOMPARE(host.getOpenFileName(QStringLiteral("Again"), QString()), QString());

    const auto& requests = host.fileRequests();
    QCOMPARE(requests.size(), 3);
    QCOMPARE(requests[0].kind, ScriptedHost::FileRequest::Save);
    QCOMPARE(requests[1].caption, QStringLiteral("Open"));
    QCOMPARE(requests[1].filter, QStringLiteral("*.xml"));
    QVERIFY(requests[1].scripted);
    QVERIFY(!requests[2].scripted);
}

void TestHostServices::installAndRestore()
{
    QVERIFY(dynamic_cast<QtHostServices*>(&HostServices::current()));
    ScriptedHost outer;
    ScriptedHost inner;
    {
        ScopedHostServices useOuter(outer);
        {
            ScopedHostServices useInner(inner);
            QCOMPARE(&HostServices::current(), &inner);
        }
        QCOMPARE(&HostServices::current(), &outer);
        HostServices::install(nullptr);
        QVERIFY(dynamic_cast<QtHostServices*>(&HostServices::current()));
    }
    QVERIFY(dynamic_cast<QtHostServices*>(&HostServices::current()));
}

void TestHostServices::resourceScopePopsOnException()
{
    ScriptedHost host;
    ScopedHostServices use(host);
    auto failingRun = []
    {
        ResourceScope scope;
        WaitCursor wait;
        throw std::runtime_error("dialog failed");
    };
    QVERIFY_THROWS_EXCEPTION(std::runtime_error, failingRun());
    QCOMPARE(host.pushCount(), 1);
    QCOMPARE(host.popCount(), 1);
    QCOMPARE(host.waitCursorDepth(), 0);
}

void TestHostServices::qtQuestion_data()
{
    QTest::addColumn<int>("reply"); // a QMessageBox::StandardButton, or 0 for Escape
    QTest::addColumn<bool>("expected");

    QTest::newRow("Yes") << int(QMessageBox::Yes) << true;
    QTest::newRow("No") << int(QMessageBox::No) << false;
    QTest::newRow("Escape") << 0 << false;
}

void TestHostServices::qtQuestion()
{
    QFETCH(int, reply);
    QFETCH(bool, expected);

    QtHostServices host;
    QString caption;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    onNextModal(
        [&](QWidget* modal)
        {
            auto* box = qobject_cast<QMessageBox*>(modal);
            QVERIFY(box);
            caption = box->windowTitle();
            icon = box->icon();
            if (reply == 0)
                QTest::keyClick(box, Qt::Key_Escape);
            else
                box->button(QMessageBox::StandardButton(reply))->click();
        });
    QCOMPARE(host.askYesNo(QStringLiteral("Delete?")), expected);
    QCOMPARE(caption, QStringLiteral("Test host"));
    QCOMPARE(icon, QMessageBox::Question);
}

void TestHostServices::qtAlert()
{
    QtHostServices host;
    QString text;
    QString caption;
    onNextModal(
        [&](QWidget* modal)
        {
            auto* box = qobject_cast<QMessageBox*>(modal);
            QVERIFY(box);
            text = box->text();
            caption = box->windowTitle();
            box->button(QMessageBox::Ok)->click();
        });
    host.alert(QStringLiteral("Catalog error!"));
    QCOMPARE(text, QStringLiteral("Catalog error!"));
    QCOMPARE(caption, QStringLiteral("Test host"));
}

void TestHostServices::qtWaitCursorNests()
{
    QApplication::setOverrideCursor(Qt::IBeamCursor); // someone else's cursor
    {
        QtHostServices host;
        host.beginWaitCursor();
        host.beginWaitCursor();
        host.endWaitCursor();
        QCOMPARE(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
        host.endWaitCursor();
        host.endWaitCursor(); // unbalanced: must leave the foreign cursor alone
        QCOMPARE(QApplication::overrideCursor()->shape(), Qt::IBeamCursor);
        host.beginWaitCursor(); // left on: the destructor takes it off
    }
    QCOMPARE(QApplication::overrideCursor()->shape(), Qt::IBeamCursor);
    QApplication::restoreOverrideCursor();
    QVERIFY(!QApplication::overrideCursor());
}

void TestHostServices::qtOpenFileDialog()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString path = dir.filePath(QStringLiteral("catalog.xml"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();

    QtHostServices host;
    QStringList filters;
    onNextModal(
        [&](QWidget* modal)
        {
            auto* dialog = qobject_cast<QFileDialog*>(modal);
            QVERIFY(dialog);
            filters = dialog->nameFilters();
            dialog->selectFile(path);
            QMetaObject::invokeMethod(dialog, "accept");
        });
    const QString chosen = host.getOpenFileName(
        QStringLiteral("Import"), QStringLiteral("Xml files (*.xml);;All Files (*.*)"));
    QCOMPARE(chosen, path);
    QCOMPARE(filters,
             (QStringList{QStringLiteral("Xml files (*.xml)"), QStringLiteral("All Files (*.*)")}));
}

QTEST_MAIN(TestHostServices)
#include "tst_hostservices.moc"
