#include "app/arx/ArxHost.h"

#include "acdocman.h"
#include "aced.h"
#include "acedads.h" // adsw_acadMainWnd
#include "adslib.h"
#include "rxregsvc.h"

#include <QWidget>
#include <string>

namespace ZEVGis::Arx
{

namespace
{

std::wstring wide(const QString& text)
{
    return text.toStdWString();
}

} // namespace

void ArxHost::unlockApplication()
{
    acrxDynamicLinker->unlockApplication(m_appId);
}

void ArxHost::registerAppMDIAware()
{
    acrxDynamicLinker->registerAppMDIAware(m_appId);
}

int ArxHost::defun(const QString& name, int index)
{
    return acedDefun(wide(name).c_str(), index);
}

int ArxHost::undef(const QString& name, int index)
{
    return acedUndef(wide(name).c_str(), index);
}

int ArxHost::regFunc(int index)
{
    return m_invokeHandler ? acedRegFunc(m_invokeHandler, index) : RTERROR;
}

int ArxHost::getFunCode()
{
    return acedGetFunCode();
}

LispArgs ArxHost::getArgs()
{
    LispArgs args;
    resbuf* list = acedGetArgs();
    for (const resbuf* element = list; element; element = element->rbnext)
    {
        LispArg arg;
        arg.restype = element->restype;
        // Only string elements carry a string; reading one from any other is not safe.
        if (element->restype == RTSTR && element->resval.rstring)
            arg.string = QString::fromWCharArray(element->resval.rstring);
        args.push_back(arg);
    }
    // The list belongs to the host's evaluator; it is not released here.
    return args;
}

void ArxHost::retVoid()
{
    acedRetVoid();
}

void ArxHostServices::alert(const QString& text, QWidget*)
{
    acedAlert(wide(text).c_str());
}

void ArxHostServices::alertWithDetails(const QString& text, const QString&, QWidget* parent)
{
    alert(text, parent);
}

// The host's own message box, owned by the asking window (else the host's main window).
// MB_DEFBUTTON2 makes No the default: Enter never confirms a deletion.
bool ArxHostServices::askYesNo(const QString& text, const QString& caption, QWidget* parent)
{
    HWND owner = parent ? reinterpret_cast<HWND>(parent->window()->winId()) : adsw_acadMainWnd();
    const std::wstring title = wide(caption.isEmpty() ? defaultCaption() : caption);
    return ::MessageBoxW(owner, wide(text).c_str(), title.c_str(),
                         MB_YESNO | MB_ICONQUESTION | MB_DEFBUTTON2)
        == IDYES;
}

void ArxHostServices::pushResourceHandle()
{
    acDocManager->pushResourceHandle(m_moduleInstance);
    QtHostServices::pushResourceHandle();
}

void ArxHostServices::popResourceHandle()
{
    acDocManager->popResourceHandle();
    QtHostServices::popResourceHandle();
}

} // namespace ZEVGis::Arx
