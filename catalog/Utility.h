#pragma once

#include <QString>
#include <QStringList>

namespace ZEVGis::Utility
{

class CUtility
{
public:
    // A new GUID in upper-case braced form: "{0F8FAD5B-D9CB-469F-A165-70867728950E}".
    static QString CreateGUID();
    // Index of `text` in `list` (exact comparison), -1 when absent.
    static int GetStringIndex(const QStringList& list, const QString& text);
};

} // namespace ZEVGis::Utility
