#include "app/CatalogEditorApp.h"

#include "app/EditorLaunch.h"
#include "host/HostServices.h"

#include <array>

using ZEVGis::Arx::AppMsgCode;
using ZEVGis::Arx::AppRetCode;

namespace
{

const std::array<CCatalogEditorApp::LispFunction, 1> lispFunctionTable{{
    {u"zevxcatalogeditor", &CCatalogEditorApp::LispCatalogEditor, false, -1},
}};

QString globalName(const CCatalogEditorApp::LispFunction& function)
{
    return QString::fromUtf16(function.globalName);
}

} // namespace

CCatalogEditorApp::CCatalogEditorApp(ZEVGis::Arx::ArxHostApi& host) : m_host(host) {}

std::span<const CCatalogEditorApp::LispFunction> CCatalogEditorApp::LispFunctions()
{
    return lispFunctionTable;
}

AppRetCode CCatalogEditorApp::On_kMessage(AppMsgCode msg)
{
    switch (msg)
    {
    case AppMsgCode::kInitAppMsg:
        return On_kInitAppMsg();
    case AppMsgCode::kUnloadAppMsg:
        return On_kUnloadAppMsg();
    case AppMsgCode::kLoadDwgMsg:
        return On_kLoadDwgMsg();
    case AppMsgCode::kUnloadDwgMsg:
        return On_kUnloadDwgMsg();
    case AppMsgCode::kInvkSubrMsg:
        return On_kInvkSubrMsg();
    default:
        return AppRetCode::kRetOK;
    }
}

// The module may be unloaded at any time and works in every open drawing. With no commands
// and no custom classes there is nothing else to register.
AppRetCode CCatalogEditorApp::On_kInitAppMsg()
{
    m_host.unlockApplication();
    m_host.registerAppMDIAware();
    return AppRetCode::kRetOK;
}

AppRetCode CCatalogEditorApp::On_kUnloadAppMsg()
{
    return AppRetCode::kRetOK;
}

AppRetCode CCatalogEditorApp::On_kLoadDwgMsg()
{
    int index = 0;
    for (const LispFunction& function : LispFunctions())
    {
        m_host.defun(globalName(function), index);
        if (function.registerAsCallable)
            m_host.regFunc(index);
        ++index;
    }
    return AppRetCode::kRetOK;
}

AppRetCode CCatalogEditorApp::On_kUnloadDwgMsg()
{
    int index = 0;
    for (const LispFunction& function : LispFunctions())
        m_host.undef(globalName(function), index++);
    return AppRetCode::kRetOK;
}

// The handler's own result (RSRSLT) is for the AutoLISP interpreter; the message itself
// always answers 0.
AppRetCode CCatalogEditorApp::On_kInvkSubrMsg()
{
    const int index = m_host.getFunCode();
    const auto functions = LispFunctions();
    if (index >= 0 && index < int(functions.size()))
        (this->*functions[size_t(index)].handler)();
    return AppRetCode::kRetOK;
}

int CCatalogEditorApp::LispCatalogEditor()
{
    const ZEVGis::Arx::LispArgs args = m_host.getArgs();
    ZEVGis::Host::ResourceScope resources;

    // Meant to be called with one string or none; the element's type is not looked at.
    QString catalogReference;
    if (!args.empty())
        catalogReference = args.front().string;

    ZEVGis::Launch::runDialog(catalogReference, 0);
    m_host.retVoid();
    return ZEVGis::Arx::RSRSLT;
}
