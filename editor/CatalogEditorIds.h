#pragma once

// Control ids of the catalog editor's dialog template (102). Every control carries its id as
// the dynamic property "controlId".
namespace ZEVGis::Editor::Ids
{
enum : int
{
    Ok = 1,
    Cancel = 2,
    GridPlaceholder = 100,
    DrawingTree = 103,       // the drawing's copy of the catalog
    CatalogCombo = 104,
    BtnNew = 105,            // new item from the chosen template
    PictureBox = 106,
    BtnAddGroup = 107,
    BtnDelete = 108,
    TemplateCombo = 109,
    BtnNewItems = 110,       // new item from the selected item
    BtnInfo = 111,
    BtnTest = 112,           // hidden: toggles the grid's read-only state
    TemplateGroupBox = 113,
    CatalogTree = 114,       // the catalog itself
    Splitter = 115,
    BtnAddToApp = 116,
    DrawingCaption = 117,
    BtnDown = 118,
    BtnUp = 119,
    BtnSort = 120,
    BtnImport = 121,
    BtnExport = 122,
    BtnSetDefault = 123,
    Separator = 124,
    LoadNotice = 125,        // not in the template: why a catalog was not loaded
    Grid = 1000,
    FilterEdit = 1300        // not in the template: the trees' name filter
};
} // namespace ZEVGis::Editor::Ids
