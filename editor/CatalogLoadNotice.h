#pragma once

#include <QString>

namespace ZEVGis::Editor
{

// A catalog file the editor could not load, as the user is told of it: the file, the place
// in it that the reason names (0 when none) and the reason without that place.
struct CatalogLoadNotice
{
    QString file;
    int line = 0;
    int column = 0;
    QString what;
};

// Splits the catalog library's reason ("not well-formed XML at line 3, column 5: ...",
// "... (at line 3, column 5)") into the place and the rest.
CatalogLoadNotice SplitLoadReason(const QString& file, const QString& reason);

// The notice in the user's language; `drawingCopy` for the drawing's copy of the catalog.
QString CatalogLoadNoticeText(const QString& catalogName, bool drawingCopy,
                              const CatalogLoadNotice& notice);

} // namespace ZEVGis::Editor
