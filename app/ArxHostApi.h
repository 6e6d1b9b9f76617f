#pragma once

#include <QString>
#include <vector>

namespace ZEVGis::Arx
{

// Messages the host sends to a module's entry point. The host glue (app/arx/) maps the
// SDK's own codes onto these; the module logic never sees the SDK.
enum class AppMsgCode
{
    kNullMsg,
    kInitAppMsg,
    kUnloadAppMsg,
    kLoadDwgMsg,
    kUnloadDwgMsg,
    kInvkSubrMsg,
    kCfgMsg,
    kEndMsg,
    kQuitMsg,
    kSaveMsg,
    kDependencyMsg,
    kNoDependencyMsg,
    kOleUnloadAppMsg,
    kPreQuitMsg,
    kInitDialogMsg,
    kEndDialogMsg,
    kSuspendMsg,
    kOther // any code the glue does not know
};

enum class AppRetCode
{
    kRetOK,
    kRetError
};

// What an AutoLISP function handler returns when it has set its result (here: nil).
constexpr int RSRSLT = 1;

// One element of an AutoLISP argument list as the host hands it over: its result-buffer
// type code and its string value (empty when the element carries none).
struct LispArg
{
    int restype = 0;
    QString string;
};
using LispArgs = std::vector<LispArg>;

// The host calls the module makes: the dynamic linker and the AutoLISP function interface.
// The resource-handle stack is reached through ZEVGis::Host::HostServices.
class ArxHostApi
{
public:
    virtual ~ArxHostApi() = default;

    virtual void unlockApplication() = 0;
    virtual void registerAppMDIAware() = 0;
    // acedDefun / acedUndef: define or remove an AutoLISP function in the current drawing.
    virtual int defun(const QString& name, int index) = 0;
    virtual int undef(const QString& name, int index) = 0;
    // acedRegFunc: makes the function with `index` callable from other applications.
    virtual int regFunc(int index) = 0;
    // acedGetFunCode: the index of the function being invoked.
    virtual int getFunCode() = 0;
    // acedGetArgs: the arguments of the call; empty for a call without arguments.
    virtual LispArgs getArgs() = 0;
    virtual void retVoid() = 0;
};

} // namespace ZEVGis::Arx
