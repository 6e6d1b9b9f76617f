#include "editor/CatalogLoadNotice.h"

#include "catalog/ModuleConfiguration.h"

#include <QDir>
#include <QRegularExpression>

namespace ZEVGis::Editor
{

namespace
{
constexpr unsigned MsgCatalogAt = 70055;
constexpr unsigned MsgCatalog = 70056;
constexpr unsigned MsgDrawingCopyAt = 70057;
constexpr unsigned MsgDrawingCopy = 70058;
} // namespace

CatalogLoadNotice SplitLoadReason(const QString& file, const QString& reason)
{
    static const QRegularExpression place(
        QStringLiteral(R"(\s*\(?\bat line (\d+), column (\d+)\)?)"));
    CatalogLoadNotice notice;
    notice.file = file;
    notice.what = reason.trimmed();
    const QRegularExpressionMatch match = place.match(notice.what);
    if (match.hasMatch())
    {
        notice.line = match.captured(1).toInt();
        notice.column = match.captured(2).toInt();
        notice.what.remove(match.capturedStart(), match.capturedLength());
    }
    return notice;
}

QString CatalogLoadNoticeText(const QString& catalogName, bool drawingCopy,
                              const CatalogLoadNotice& notice)
{
    const CModuleConfiguration* configuration = CModuleConfiguration::Instance();
    const QString file = QDir::toNativeSeparators(notice.file);
    if (notice.line > 0)
        return configuration->GetMsg(drawingCopy ? MsgDrawingCopyAt : MsgCatalogAt)
            .arg(catalogName, file, QString::number(notice.line),
                 QString::number(notice.column), notice.what);
    return configuration->GetMsg(drawingCopy ? MsgDrawingCopy : MsgCatalog)
        .arg(catalogName, file, notice.what);
}

} // namespace ZEVGis::Editor
