// The module's entry points inside the CAD host: the DLL attach routine and acrxEntryPoint.

#include "app/CatalogEditorApp.h"
#include "app/EditorLaunch.h"
#include "app/arx/ArxHost.h"
#include "host/HostServices.h"

#include "aced.h"
#include "adslib.h"
#include "rxregsvc.h"

#include <QApplication>
#include <QWindow>

#include <memory>

namespace
{

HINSTANCE moduleInstance = nullptr;

struct Module
{
    ZEVGis::Arx::ArxHost host;
    std::unique_ptr<ZEVGis::Arx::ArxHostServices> services;
    std::unique_ptr<CCatalogEditorApp> app;
    std::unique_ptr<QApplication> qtApplication; // only when the host runs no Qt of its own
    std::unique_ptr<QWindow> hostWindow;
};

Module& module()
{
    static Module instance;
    return instance;
}

ZEVGis::Arx::AppMsgCode neutralCode(AcRx::AppMsgCode msg)
{
    using ZEVGis::Arx::AppMsgCode;
    switch (msg)
    {
    case AcRx::kNullMsg:
        return AppMsgCode::kNullMsg;
    case AcRx::kInitAppMsg:
        return AppMsgCode::kInitAppMsg;
    case AcRx::kUnloadAppMsg:
        return AppMsgCode::kUnloadAppMsg;
    case AcRx::kLoadDwgMsg:
        return AppMsgCode::kLoadDwgMsg;
    case AcRx::kUnloadDwgMsg:
        return AppMsgCode::kUnloadDwgMsg;
    case AcRx::kInvkSubrMsg:
        return AppMsgCode::kInvkSubrMsg;
    case AcRx::kCfgMsg:
        return AppMsgCode::kCfgMsg;
    case AcRx::kEndMsg:
        return AppMsgCode::kEndMsg;
    case AcRx::kQuitMsg:
        return AppMsgCode::kQuitMsg;
    case AcRx::kSaveMsg:
        return AppMsgCode::kSaveMsg;
    case AcRx::kDependencyMsg:
        return AppMsgCode::kDependencyMsg;
    case AcRx::kNoDependencyMsg:
        return AppMsgCode::kNoDependencyMsg;
    case AcRx::kOleUnloadAppMsg:
        return AppMsgCode::kOleUnloadAppMsg;
    case AcRx::kPreQuitMsg:
        return AppMsgCode::kPreQuitMsg;
    case AcRx::kInitDialogMsg:
        return AppMsgCode::kInitDialogMsg;
    case AcRx::kEndDialogMsg:
        return AppMsgCode::kEndDialogMsg;
    case AcRx::kSuspendMsg:
        return AppMsgCode::kSuspendMsg;
    default:
        return AppMsgCode::kOther;
    }
}

// Called by the host for a function registered with acedRegFunc.
int invokeFunction()
{
    if (!module().app)
        return RTERROR;
    module().app->On_kMessage(ZEVGis::Arx::AppMsgCode::kInvkSubrMsg);
    return RSRSLT;
}

void startModule(void* appId)
{
    Module& m = module();
    if (!QApplication::instance())
    {
        static int argc = 1;
        static char name[] = "zevxcatalogeditor";
        static char* argv[] = {name, nullptr};
        m.qtApplication = std::make_unique<QApplication>(argc, argv);
    }
    // The editor is modal to the host's main window.
    m.hostWindow.reset(QWindow::fromWinId(WId(adsw_acadMainWnd())));
    ZEVGis::Launch::setHostWindow(m.hostWindow.get());

    m.services = std::make_unique<ZEVGis::Arx::ArxHostServices>(moduleInstance);
    ZEVGis::Host::HostServices::install(m.services.get());
    m.host.setAppId(appId);
    m.host.setInvokeHandler(&invokeFunction);
    m.app = std::make_unique<CCatalogEditorApp>(m.host);
}

void stopModule()
{
    Module& m = module();
    m.app.reset();
    ZEVGis::Launch::setHostWindow(nullptr);
    ZEVGis::Host::HostServices::install(nullptr);
    m.services.reset();
    m.hostWindow.reset();
    m.qtApplication.reset();
}

} // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID)
{
    if (reason == DLL_PROCESS_ATTACH)
    {
        moduleInstance = instance;
        DisableThreadLibraryCalls(instance);
    }
    return TRUE;
}

extern "C" __declspec(dllexport) AcRx::AppRetCode acrxEntryPoint(AcRx::AppMsgCode msg, void* pkt)
{
    if (msg == AcRx::kInitAppMsg)
        startModule(pkt);
    if (!module().app)
        return AcRx::kRetOK;

    const ZEVGis::Arx::AppRetCode result = module().app->On_kMessage(neutralCode(msg));
    if (msg == AcRx::kUnloadAppMsg)
        stopModule();
    return result == ZEVGis::Arx::AppRetCode::kRetOK ? AcRx::kRetOK : AcRx::kRetError;
}
