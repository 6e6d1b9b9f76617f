#include "app/CatalogEditorApp.h"
#include "app/EditorLaunch.h"
#include "host/ScriptedHost.h"

#include <QTest>

#include <stdexcept>

using namespace ZEVGis;
using Arx::AppMsgCode;
using Arx::AppRetCode;

namespace
{

// The host as the module sees it: every call is noted as text; the arguments and the
// function code come from the test.
class SimulatedHost : public Arx::ArxHostApi
{
public:
    explicit SimulatedHost(const Host::ScriptedHost& services) : m_services(services) {}

    QStringList calls;
    Arx::LispArgs args;
    int funCode = 0;

    void unlockApplication() override { calls << "unlock"; }
    void registerAppMDIAware() override { calls << "mdiAware"; }
    int defun(const QString& name, int index) override { return note("defun", name, index); }
    int undef(const QString& name, int index) override { return note("undef", name, index); }
    int regFunc(int index) override { return note("regFunc", QString(), index); }
    int getFunCode() override { return (calls << "getFunCode", funCode); }
    // The arguments are read before the module's resource handle is pushed, and nil is
    // returned while it is still pushed.
    Arx::LispArgs getArgs() override { return (calls << withDepth("getArgs"), args); }
    void retVoid() override { calls << withDepth("retVoid"); }

private:
    QString withDepth(const char* call) const
    {
        return QStringLiteral("%1@%2").arg(QLatin1String(call)).arg(m_services.resourceDepth());
    }
    int note(const char* call, const QString& name, int index)
    {
        calls << QStringLiteral("%1 %2 %3").arg(QLatin1String(call), name).arg(index);
        return 1;
    }
    const Host::ScriptedHost& m_services;
};

const int stringType = 5005;
const int integerType = 5003;

} // namespace

class TestLaunch : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        Launch::setDialogRunner(
            [this](const QString& reference, int showHidden)
            {
                m_runs << QStringLiteral("%1|%2|%3")
                              .arg(reference)
                              .arg(showHidden)
                              .arg(m_services.resourceDepth());
                if (m_throwFromDialog)
                    throw std::runtime_error("dialog failed");
            });
    }
    void init()
    {
        m_services.clear();
        m_runs.clear();
        m_throwFromDialog = false;
    }

    void messages();
    void invocation_data();
    void invocation();
    void exportedEditorPopsHandleOnThrow();

private:
    Host::ScriptedHost m_services;
    Host::ScopedHostServices m_useServices{m_services};
    QStringList m_runs; // "reference|showHidden|resource depth" per dialog run
    bool m_throwFromDialog = false;
};

// Every drawing gets the function as index 0, never as a callable function, and loses it
// when it closes; the other messages change nothing.
void TestLaunch::messages()
{
    SimulatedHost host(m_services);
    CCatalogEditorApp app(host);
    for (AppMsgCode msg :
         {AppMsgCode::kInitAppMsg, AppMsgCode::kLoadDwgMsg, AppMsgCode::kNullMsg,
          AppMsgCode::kCfgMsg, AppMsgCode::kLoadDwgMsg, AppMsgCode::kSaveMsg,
          AppMsgCode::kUnloadDwgMsg, AppMsgCode::kEndDialogMsg, AppMsgCode::kOther,
          AppMsgCode::kUnloadDwgMsg, AppMsgCode::kQuitMsg, AppMsgCode::kUnloadAppMsg})
        QCOMPARE(app.On_kMessage(msg), AppRetCode::kRetOK);
    const QString defun = QStringLiteral("defun zevxcatalogeditor 0");
    const QString undef = QStringLiteral("undef zevxcatalogeditor 0");
    QCOMPARE(host.calls, (QStringList{"unlock", "mdiAware", defun, defun, undef, undef}));
    QVERIFY(m_runs.isEmpty());
}

void TestLaunch::invocation_data()
{
    QTest::addColumn<QList<Arx::LispArg>>("args");
    QTest::addColumn<int>("funCode");
    QTest::addColumn<bool>("throws");
    QTest::addColumn<QStringList>("runs");
    QTest::addColumn<QStringList>("calls");

    const QStringList ran{"getFunCode", "getArgs@0", "retVoid@1"};
    const QList<Arx::LispArg> none;
    // Hidden catalogs are never offered from AutoLISP: the show-hidden flag is always 0.
    // clang-format off
    QTest::newRow("no argument") << none << 0 << false << QStringList{"|0|1"} << ran;
    QTest::newRow("reference") << QList<Arx::LispArg>{{stringType, "Stupovi čelični"}} << 0
        << false << QStringList{"Stupovi čelični|0|1"} << ran;
    QTest::newRow("first argument only, type not examined")
        << QList<Arx::LispArg>{{integerType, "7"}, {stringType, "CABLES"}} << 0 << false
        << QStringList{"7|0|1"} << ran;
    QTest::newRow("code past the table") << none << 1 << false << QStringList{}
        << QStringList{"getFunCode"};
    QTest::newRow("negative code") << none << -1 << false << QStringList{}
        << QStringList{"getFunCode"};
    QTest::newRow("dialog throws") << none << 0 << true << QStringList{"|0|1"}
        << QStringList{"getFunCode", "getArgs@0"};
    // clang-format on
}

void TestLaunch::invocation()
{
    QFETCH(QList<Arx::LispArg>, args);
    QFETCH(int, funCode);
    QFETCH(bool, throws);
    QFETCH(QStringList, runs);
    QFETCH(QStringList, calls);

    SimulatedHost host(m_services);
    host.args.assign(args.cbegin(), args.cend());
    host.funCode = funCode;
    m_throwFromDialog = throws;
    CCatalogEditorApp app(host);
    if (throws)
        QVERIFY_THROWS_EXCEPTION(std::runtime_error, app.On_kMessage(AppMsgCode::kInvkSubrMsg));
    else
        QCOMPARE(app.On_kMessage(AppMsgCode::kInvkSubrMsg), AppRetCode::kRetOK);

    QCOMPARE(m_runs, runs);
    QCOMPARE(host.calls, calls);
    QCOMPARE(m_services.pushCount(), runs.size());
    QCOMPARE(m_services.resourceDepth(), 0);
    // What the interpreter gets from the handler: nil was set.
    if (!runs.isEmpty() && !throws)
        QCOMPARE((app.*CCatalogEditorApp::LispFunctions()[0].handler)(), Arx::RSRSLT);
}

void TestLaunch::exportedEditorPopsHandleOnThrow()
{
    m_throwFromDialog = true;
    QVERIFY_THROWS_EXCEPTION(std::runtime_error,
                             Launch::runCatalogEditor(QStringLiteral("CABLES"), 1));
    QCOMPARE(m_runs, QStringList{"CABLES|1|1"});
    QCOMPARE(m_services.popCount(), 1);
}

QTEST_GUILESS_MAIN(TestLaunch)
#include "tst_launch.moc"
