#pragma once

#include "catalog/CatalogItemTemplate.h"

#include <QImage>
#include <QRect>

namespace ZEVGis::Data
{

class CCatalog;

// Makes the items of one catalog. The order of the virtual operations is part of the
// interface: callers in other modules reach them by slot.
class ICatalogItemFactory
{
public:
    // Deep copy of `source` with a new GUID, no parent, no sub-items and no default mark;
    // empty on null.
    virtual boost::shared_ptr<CCatalogItem> CreateItemFrom(CCatalogItem* source) = 0;
    // New item from the template's definition, with a new GUID; empty when the template
    // has no definition.
    virtual boost::shared_ptr<CCatalogItem> CreateItemFromTemplate(CCatalogItemTemplate* tmpl) = 0;
    virtual QString GetCatalogReference() const = 0;
    virtual void SetCatalogReference(const QString& reference) = 0;
    // Renders the picture `pictureRef` (relative to the catalog's picture folder; SVG or
    // raster) fitted into `rect`. Returns a null image when there is no picture; `drawMode`
    // receives the picture box draw mode the image is meant for.
    virtual QImage CreatePictureBitmap(const QString& pictureRef, CCatalogItem* item,
                                       const QRect& rect, int* drawMode) = 0;
    virtual QString GetNewGroupName(int depthLevel, CCatalogItemTemplate* tmpl) = 0;
    virtual QString GetNewItemName(CCatalogItemTemplate* tmpl) = 0;
    virtual QString GetGroupIconName(int depthLevel, int opened) = 0;
    virtual QString GetItemIconName(int isDefault) = 0;

    // Last, so that it does not take the first vtable slots ahead of CreateItemFrom.
    virtual ~ICatalogItemFactory() = default;
};

// The factory every catalog gets unless told otherwise.
class CDefaultCatalogItemFactory : public ICatalogItemFactory
{
public:
    // `pictureFolder`: where picture references are resolved.
    explicit CDefaultCatalogItemFactory(const QString& pictureFolder = QString());

    boost::shared_ptr<CCatalogItem> CreateItemFrom(CCatalogItem* source) override;
    boost::shared_ptr<CCatalogItem> CreateItemFromTemplate(CCatalogItemTemplate* tmpl) override;
    QString GetCatalogReference() const override { return m_reference; }
    void SetCatalogReference(const QString& reference) override { m_reference = reference; }
    QImage CreatePictureBitmap(const QString& pictureRef, CCatalogItem* item, const QRect& rect,
                               int* drawMode) override;
    QString GetNewGroupName(int depthLevel, CCatalogItemTemplate* tmpl) override;
    QString GetNewItemName(CCatalogItemTemplate* tmpl) override;
    QString GetGroupIconName(int depthLevel, int opened) override;
    QString GetItemIconName(int isDefault) override;

    QString pictureFolder() const { return m_pictureFolder; }
    void setPictureFolder(const QString& folder) { m_pictureFolder = folder; }

private:
    QString m_reference;
    QString m_pictureFolder;
};

} // namespace ZEVGis::Data
