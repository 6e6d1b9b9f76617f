#include "catalog/CatalogItemXml.h"
#include "catalog/CatalogXml.h"

#include <cstring>

namespace ZEVGis::Data
{

QByteArray CatalogItemToXml(CCatalogItem& item)
{
    CatalogXml::XmlOut out;
    CatalogXml::writeItem(out, item, false, true);
    return out.take().trimmed();
}

boost::shared_ptr<CCatalogItem> CatalogItemFromXml(const QByteArray& utf8, QString* why)
{
    QString error;
    pugi::xml_document document;
    boost::shared_ptr<CCatalogItem> item;
    if (CatalogXml::parseDocument(document, utf8.constData(), size_t(utf8.size()), false, error))
    {
        const pugi::xml_node node = document.document_element();
        if (std::strcmp(node.name(), CatalogXml::Names::item) != 0)
        {
            error =
                QStringLiteral("<%1> is not a catalog item").arg(QString::fromUtf8(node.name()));
        }
        else
        {
            CatalogXml::ItemReader reader;
            reader.setText(utf8.constData(), size_t(utf8.size()));
            item = reader.readItem(node, false);
            error = reader.error();
        }
    }
    if (why)
        *why = item ? QString() : error;
    return item;
}

} // namespace ZEVGis::Data
