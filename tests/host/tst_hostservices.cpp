#include "host/HostServices.h"
#include "host/QtHostServices.h"
#include "host/ScriptedHost.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QStandardPaths>
#include <QTest>
#include <QTimer>

#include <stdexcept>

using namespace ZEVGis::Host;

class TestHostServices : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        QStandardPaths::setTestModeEnabled(true);
        QApplication::setApplicationDisplayName(QStringLiteral("Test host"));
    }

    void scopesRestoreOnException();
    void qtBoxes_data();
    void qtBoxes();
    void qtWaitCursorNests();
};

void TestHostServices::scopesRestoreOnException()
{
    QVERIFY(dynamic_cast<QtHostServices*>(&HostServices::current()));
    ScriptedHost host;
    ScriptedHost installedMeanwhile;
    {
        ScopedHostServices use(host);
        // Other services installed inside the scopes do not receive their ends.
        auto failingRun = [&installedMeanwhile]
        {
            ResourceScope scope;
            WaitCursor wait;
            HostServices::install(&installedMeanwhile);
            throw std::runtime_error("dialog failed");
        };
        QVERIFY_THROWS_EXCEPTION(std::runtime_error, failingRun());
    }
    QCOMPARE(host.pushCount(), 1);
    QCOMPARE(host.popCount(), 1);
    QCOMPARE(host.waitCursorDepth(), 0);
    QCOMPARE(installedMeanwhile.popCount(), 0);
    QCOMPARE(installedMeanwhile.waitCursorDepth(), 0);
    QVERIFY(dynamic_cast<QtHostServices*>(&HostServices::current()));
}

void TestHostServices::qtBoxes_data()
{
    QTest::addColumn<bool>("question");
    QTest::addColumn<int>("reply"); // a QMessageBox::StandardButton, or a key (Escape, Enter)
    QTest::addColumn<bool>("yes");
    QTest::addColumn<int>("icon");

    QTest::newRow("alert") << false << int(QMessageBox::Ok) << false << int(QMessageBox::Warning);
    QTest::newRow("Yes") << true << int(QMessageBox::Yes) << true << int(QMessageBox::Question);
    QTest::newRow("No") << true << int(QMessageBox::No) << false << int(QMessageBox::Question);
    QTest::newRow("Escape") << true << int(Qt::Key_Escape) << false << int(QMessageBox::Question);
    // Enter alone never answers Yes: a question may be about deleting a whole catalog.
    QTest::newRow("Enter") << true << int(Qt::Key_Return) << false << int(QMessageBox::Question);
}

void TestHostServices::qtBoxes()
{
    QFETCH(bool, question);
    QFETCH(int, reply);
    QFETCH(bool, yes);
    QFETCH(int, icon);

    QtHostServices host;
    QString text;
    QString caption;
    int shownIcon = -1;
    QTimer::singleShot(0, qApp,
                       [&]
                       {
                           auto* box =
                               qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
                           QVERIFY(box);
                           text = box->text();
                           caption = box->windowTitle();
                           shownIcon = box->icon();
                           if (reply == Qt::Key_Escape || reply == Qt::Key_Return)
                               QTest::keyClick(box, Qt::Key(reply));
                           else
                               box->button(QMessageBox::StandardButton(reply))->click();
                       });
    const QString asked = QStringLiteral("Catalog error!");
    if (question)
        QCOMPARE(host.askYesNo(asked), yes);
    else
        host.alert(asked);
    QCOMPARE(text, asked);
    QCOMPARE(caption, QStringLiteral("Test host"));
    QCOMPARE(shownIcon, icon);
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

QTEST_MAIN(TestHostServices)
#include "tst_hostservices.moc"
