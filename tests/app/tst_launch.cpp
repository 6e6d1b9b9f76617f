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

// The host as the module sees it: every call is logged, arguments and function code come
// from the test.
class SimulatedHost : public Arx::ArxHostApi
{
public:
    explicit SimulatedHost(const Host::ScriptedHost& services) : m_services(services) {}

    QStringList calls;
    Arx::LispArgs args;
    int funCode = 0;
    int resourceDepthAtRetVoid = -1;

    void unlockApplication() override { calls << QStringLiteral("unlockApplication"); }
    void registerAppMDIAware() override { calls << QStringLiteral("registerAppMDIAware"); }
    int defun(const QString& name, int index) override
    {
        calls << QStringLiteral("defun %1 %2").arg(name).arg(index);
        return 1;
    }
    int undef(const QString& name, int index) override
    {
        calls << QStringLiteral("undef %1 %2").arg(name).arg(index);
        return 1;
    }
    int regFunc(int index) override
    {
        calls << QStringLiteral("regFunc %1").arg(index);
        return 1;
    }
    int getFunCode() override
    {
        calls << QStringLiteral("getFunCode");
        return funCode;
    }
    Arx::LispArgs getArgs() override
    {
        calls << QStringLiteral("getArgs");
        return args;
    }
    void retVoid() override
    {
        calls << QStringLiteral("retVoid");
        resourceDepthAtRetVoid = m_services.resourceDepth();
    }

private:
    const Host::ScriptedHost& m_services;
};

struct DialogRun
{
    QString reference;
    int showHidden = -1;
    int resourceDepth = -1;
};

} // namespace

Q_DECLARE_METATYPE(AppMsgCode)

class TestLaunch : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void messages_data();
    void messages();
    void lispCall_data();
    void lispCall();
    void lispHandlerReturnsResult();
    void unknownFunctionCodeRunsNothing_data();
    void unknownFunctionCodeRunsNothing();
    void throwingDialogPopsResources_data();
    void throwingDialogPopsResources();

private:
    Host::ScriptedHost m_services;
    std::unique_ptr<Host::ScopedHostServices> m_useServices;
    QList<DialogRun> m_runs;
    bool m_throwFromDialog = false;
    Launch::DialogRunner m_previousRunner;
};

void TestLaunch::init()
{
    m_services.clear();
    m_useServices = std::make_unique<Host::ScopedHostServices>(m_services);
    m_runs.clear();
    m_throwFromDialog = false;
    m_previousRunner = Launch::setDialogRunner(
        [this](const QString& reference, int showHidden)
        {
            m_runs.append({reference, showHidden, m_services.resourceDepth()});
            if (m_throwFromDialog)
                throw std::runtime_error("dialog failed");
        });
}

void TestLaunch::cleanup()
{
    Launch::setDialogRunner(m_previousRunner);
    m_useServices.reset();
}

void TestLaunch::messages_data()
{
    QTest::addColumn<QList<AppMsgCode>>("messages");
    QTest::addColumn<QStringList>("calls");

    const QString defun = QStringLiteral("defun zevxcatalogeditor 0");
    const QString undef = QStringLiteral("undef zevxcatalogeditor 0");

    QTest::newRow("init") << QList<AppMsgCode>{AppMsgCode::kInitAppMsg}
                          << QStringList{QStringLiteral("unlockApplication"),
                                         QStringLiteral("registerAppMDIAware")};
    // Every drawing gets the function, always as index 0, and never as a callable function.
    QTest::newRow("two drawings open, one closes")
        << QList<AppMsgCode>{AppMsgCode::kLoadDwgMsg, AppMsgCode::kLoadDwgMsg,
                             AppMsgCode::kUnloadDwgMsg}
        << QStringList{defun, defun, undef};
    QTest::newRow("module unloaded with drawings open")
        << QList<AppMsgCode>{AppMsgCode::kInitAppMsg,   AppMsgCode::kLoadDwgMsg,
                             AppMsgCode::kLoadDwgMsg,   AppMsgCode::kUnloadDwgMsg,
                             AppMsgCode::kUnloadDwgMsg, AppMsgCode::kUnloadAppMsg}
        << QStringList{QStringLiteral("unlockApplication"),
                       QStringLiteral("registerAppMDIAware"),
                       defun,
                       defun,
                       undef,
                       undef};
    QTest::newRow("messages without action")
        << QList<AppMsgCode>{AppMsgCode::kNullMsg,         AppMsgCode::kCfgMsg,
                             AppMsgCode::kEndMsg,          AppMsgCode::kQuitMsg,
                             AppMsgCode::kSaveMsg,         AppMsgCode::kDependencyMsg,
                             AppMsgCode::kNoDependencyMsg, AppMsgCode::kOleUnloadAppMsg,
                             AppMsgCode::kPreQuitMsg,      AppMsgCode::kInitDialogMsg,
                             AppMsgCode::kEndDialogMsg,    AppMsgCode::kSuspendMsg,
                             AppMsgCode::kOther,           AppMsgCode::kUnloadAppMsg}
        << QStringList{};
}

void TestLaunch::messages()
{
    QFETCH(QList<AppMsgCode>, messages);
    QFETCH(QStringList, calls);

    SimulatedHost host(m_services);
    CCatalogEditorApp app(host);
    for (AppMsgCode msg : messages)
        QCOMPARE(app.On_kMessage(msg), AppRetCode::kRetOK);
    QCOMPARE(host.calls, calls);
    QVERIFY(m_runs.isEmpty());
    QCOMPARE(m_services.pushCount(), 0);
}

void TestLaunch::lispCall_data()
{
    QTest::addColumn<QList<Arx::LispArg>>("args");
    QTest::addColumn<QString>("reference");

    constexpr int stringType = 5005;
    constexpr int integerType = 5003;
    QTest::newRow("no argument") << QList<Arx::LispArg>{} << QString();
    QTest::newRow("reference") << QList<Arx::LispArg>{{stringType, QStringLiteral("cables")}}
                               << QStringLiteral("cables");
    QTest::newRow("only the first argument counts")
        << QList<Arx::LispArg>{{stringType, QStringLiteral("POLES")},
                               {stringType, QStringLiteral("CABLES")}}
        << QStringLiteral("POLES");
    QTest::newRow("type not examined")
        << QList<Arx::LispArg>{{integerType, QStringLiteral("7")}} << QStringLiteral("7");
    QTest::newRow("non-ASCII reference")
        << QList<Arx::LispArg>{{stringType, QStringLiteral("Stupovi čelični")}}
        << QStringLiteral("Stupovi čelični");
}

void TestLaunch::lispCall()
{
    QFETCH(QList<Arx::LispArg>, args);
    QFETCH(QString, reference);

    SimulatedHost host(m_services);
    host.args.assign(args.cbegin(), args.cend());
    CCatalogEditorApp app(host);
    QCOMPARE(app.On_kMessage(AppMsgCode::kInvkSubrMsg), AppRetCode::kRetOK);

    QCOMPARE(m_runs.size(), 1);
    QCOMPARE(m_runs[0].reference, reference);
    QCOMPARE(m_runs[0].showHidden, 0); // hidden catalogs are never offered from AutoLISP
    QCOMPARE(m_runs[0].resourceDepth, 1);
    QCOMPARE(host.calls, (QStringList{QStringLiteral("getFunCode"), QStringLiteral("getArgs"),
                                      QStringLiteral("retVoid")}));
    QCOMPARE(host.resourceDepthAtRetVoid, 1); // nil is returned before the handle is popped
    QCOMPARE(m_services.pushCount(), 1);
    QCOMPARE(m_services.resourceDepth(), 0);
}

void TestLaunch::lispHandlerReturnsResult()
{
    SimulatedHost host(m_services);
    CCatalogEditorApp app(host);
    const auto functions = CCatalogEditorApp::LispFunctions();
    QCOMPARE(functions.size(), size_t(1));
    QCOMPARE((app.*functions[0].handler)(), Arx::RSRSLT);
    QCOMPARE(m_runs.size(), 1);
}

void TestLaunch::unknownFunctionCodeRunsNothing_data()
{
    QTest::addColumn<int>("funCode");
    QTest::newRow("past the table") << 1;
    QTest::newRow("negative") << -1;
}

void TestLaunch::unknownFunctionCodeRunsNothing()
{
    QFETCH(int, funCode);
    SimulatedHost host(m_services);
    host.funCode = funCode;
    CCatalogEditorApp app(host);
    QCOMPARE(app.On_kMessage(AppMsgCode::kInvkSubrMsg), AppRetCode::kRetOK);
    QVERIFY(m_runs.isEmpty());
    QCOMPARE(host.calls, QStringList{QStringLiteral("getFunCode")});
    QCOMPARE(m_services.pushCount(), 0);
}

void TestLaunch::throwingDialogPopsResources_data()
{
    QTest::addColumn<bool>("fromLisp");
    QTest::newRow("AutoLISP function") << true;
    QTest::newRow("exported function") << false;
}

void TestLaunch::throwingDialogPopsResources()
{
    QFETCH(bool, fromLisp);
    m_throwFromDialog = true;
    SimulatedHost host(m_services);
    CCatalogEditorApp app(host);

    if (fromLisp)
        QVERIFY_THROWS_EXCEPTION(std::runtime_error, app.On_kMessage(AppMsgCode::kInvkSubrMsg));
    else
        QVERIFY_THROWS_EXCEPTION(std::runtime_error,
                                 Launch::runCatalogEditor(QStringLiteral("CABLES"), 1));

    QCOMPARE(m_runs.size(), 1);
    QCOMPARE(m_services.pushCount(), 1);
    QCOMPARE(m_services.popCount(), 1);
    QVERIFY(!host.calls.contains(QStringLiteral("retVoid")));
}

QTEST_GUILESS_MAIN(TestLaunch)
#include "tst_launch.moc"
