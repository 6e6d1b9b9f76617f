#pragma once

// The module's exported face, called by the suite's other modules.

#if defined(_WIN32)
#if defined(ZEVX_MODULE_BUILD)
#define ZEVX_MODULE_EXPORT __declspec(dllexport)
#else
#define ZEVX_MODULE_EXPORT __declspec(dllimport)
#endif
#else
#define ZEVX_MODULE_EXPORT __attribute__((visibility("default")))
#endif

namespace ZEVGis::Data
{

class ZEVX_MODULE_EXPORT CCatalogEditor
{
public:
    // Opens the catalog editor modally. `catalogReference` preselects a catalog (matched
    // ignoring case; null or empty: the first listed); `showHiddenCatalogs` non-zero also
    // lists the hidden catalogs. Returns when the editor is closed.
    static void Editor(const wchar_t* catalogReference, int showHiddenCatalogs);

    CCatalogEditor& operator=(const CCatalogEditor& other);
};

} // namespace ZEVGis::Data
