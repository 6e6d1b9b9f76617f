#pragma once

// Binding of the module to the CAD host's SDK. Built only on Windows with the SDK.

#include "app/ArxHostApi.h"
#include "host/QtHostServices.h"

#include <windows.h>

namespace ZEVGis::Arx
{

// The host calls of the application object, made through the SDK.
class ArxHost final : public ArxHostApi
{
public:
    // `appId` is the packet of kInitAppMsg, which identifies the module to the linker.
    void setAppId(void* appId) { m_appId = appId; }
    // The function acedRegFunc hands to the host for callable functions.
    void setInvokeHandler(int (*handler)()) { m_invokeHandler = handler; }

    void unlockApplication() override;
    void registerAppMDIAware() override;
    int defun(const QString& name, int index) override;
    int undef(const QString& name, int index) override;
    int regFunc(int index) override;
    int getFunCode() override;
    LispArgs getArgs() override;
    void retVoid() override;

private:
    void* m_appId = nullptr;
    int (*m_invokeHandler)() = nullptr;
};

// Host services inside the host: its alert box, its message box for questions and its
// resource-handle stack; the rest as in any Qt application.
class ArxHostServices final : public Host::QtHostServices
{
public:
    explicit ArxHostServices(HINSTANCE moduleInstance) : m_moduleInstance(moduleInstance) {}

    void alert(const QString& text, QWidget* parent = nullptr) override;
    // The host's alert has no place for details: the text alone (the reason is in the log).
    void alertWithDetails(const QString& text, const QString& details,
                          QWidget* parent = nullptr) override;
    bool askYesNo(const QString& text, const QString& caption = QString(),
                  QWidget* parent = nullptr) override;
    void pushResourceHandle() override;
    void popResourceHandle() override;

private:
    HINSTANCE m_moduleInstance;
};

} // namespace ZEVGis::Arx
