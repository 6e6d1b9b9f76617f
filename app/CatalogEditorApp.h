#pragma once

#include "app/ArxHostApi.h"

#include <span>

// The module's application object: answers the host's messages and carries the AutoLISP
// function table. The module registers no commands and no custom object classes; its one
// entry to the user is the AutoLISP function "zevxcatalogeditor" (and the exported
// ZEVGis::Data::CCatalogEditor::Editor).
class CCatalogEditorApp
{
public:
    using LispHandler = int (CCatalogEditorApp::*)();

    // One row of the AutoLISP function table.
    struct LispFunction
    {
        const char16_t* globalName;
        LispHandler handler;
        bool registerAsCallable; // acedRegFunc as well as acedDefun
        int nameStringId;        // -1: the global name is used as it stands
    };

    explicit CCatalogEditorApp(ZEVGis::Arx::ArxHostApi& host);

    // The entry point's message dispatch.
    ZEVGis::Arx::AppRetCode On_kMessage(ZEVGis::Arx::AppMsgCode msg);

    ZEVGis::Arx::AppRetCode On_kInitAppMsg();
    ZEVGis::Arx::AppRetCode On_kUnloadAppMsg();
    ZEVGis::Arx::AppRetCode On_kLoadDwgMsg();
    ZEVGis::Arx::AppRetCode On_kUnloadDwgMsg();
    ZEVGis::Arx::AppRetCode On_kInvkSubrMsg();

    // (zevxcatalogeditor [catalog-reference]): opens the editor; the call returns nil.
    int LispCatalogEditor();

    static std::span<const LispFunction> LispFunctions();

private:
    ZEVGis::Arx::ArxHostApi& m_host;
};
