#include "catalog/Utility.h"

#include <QUuid>

namespace ZEVGis::Utility
{

QString CUtility::CreateGUID()
{
    return QUuid::createUuid().toString(QUuid::WithBraces).toUpper();
}

int CUtility::GetStringIndex(const QStringList& list, const QString& text)
{
    return int(list.indexOf(text));
}

} // namespace ZEVGis::Utility
