#pragma once

#include "catalog/CatalogItem.h"

#include <QByteArray>
#include <QString>
#include <boost/shared_ptr.hpp>

namespace ZEVGis::Data
{

// One item alone as the catalog format writes it (an <i> element in UTF-8): name, message
// number, flags, order number, picture, template, parent GUID and every category and
// property with type, value, caption, picture, read-only flag and choices. Sub-items are
// not included. The repository keeps each record's content in this form.
QByteArray CatalogItemToXml(CCatalogItem& item);

// The item back from CatalogItemToXml's text, without sub-items or a parent pointer (its
// parent GUID is set). Empty, with the reason in `why`, when the text is not such an item.
boost::shared_ptr<CCatalogItem> CatalogItemFromXml(const QByteArray& utf8, QString* why = nullptr);

} // namespace ZEVGis::Data
