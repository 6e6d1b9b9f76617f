#include "xml/XmlValidation.h"

#include "xml/XmlDocument.h"

XmlFileCheck CheckXmlFile(CXmlDocument& doc, const QString& path)
{
    XmlFileCheck check;
    check.wellFormed = doc.LoadFile(path);
    check.result = doc.GetResult();
    return check;
}

QString FormatXmlFileCheck(const QString& path, const XmlFileCheck& check)
{
    return QStringLiteral("%1: %2 (%3)")
        .arg(path,
             check.wellFormed ? QStringLiteral("well formed") : QStringLiteral("not well formed"),
             check.result);
}
