#pragma once

// Control ids of the import/export dialog's template (130). Every control carries its id as
// the dynamic property "controlId".
namespace ZEVGis::Impex::Ids
{
enum : int
{
    Ok = 1,
    Close = 2,
    BtnDel = 106,
    BtnAdd = 111,      // "->"
    BtnBrowse = 112,
    BtnRemove = 113,   // "<-"
    EditPath = 118,
    TreeLocal = 119,   // the local catalog (left)
    TreeTarget = 120,  // the file's catalog or the repository (right)
    ModeGroupBox = 121,
    LocalCaption = 122,
    TargetCaption = 123,
    RadioFile = 125,
    RadioRepository = 126
};
} // namespace ZEVGis::Impex::Ids
