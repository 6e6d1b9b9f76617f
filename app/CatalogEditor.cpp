#include "app/CatalogEditor.h"

#include "app/EditorLaunch.h"

#include <QString>

namespace ZEVGis::Data
{

void CCatalogEditor::Editor(const wchar_t* catalogReference, int showHiddenCatalogs)
{
    const QString reference =
        catalogReference ? QString::fromWCharArray(catalogReference) : QString();
    Launch::runCatalogEditor(reference, showHiddenCatalogs);
}

CCatalogEditor& CCatalogEditor::operator=(const CCatalogEditor&)
{
    return *this;
}

} // namespace ZEVGis::Data
