#include "catalog/CatalogItemFactory.h"
#include "catalog/Utility.h"

#include <QDir>
#include <QFileInfo>
#include <QImageReader>
#include <QPainter>
#include <QSvgRenderer>
#include <boost/make_shared.hpp>

namespace ZEVGis::Data
{

namespace
{

// Copies everything of an item but its identity, its place in a tree and its default mark:
// a copy never becomes a second default of its equipment type; the user marks it ("*").
boost::shared_ptr<CCatalogItem> copyOf(CCatalogItem& source)
{
    auto item = boost::make_shared<CCatalogItem>();
    item->SetGUID(Utility::CUtility::CreateGUID());
    item->SetName(source.GetName());
    item->SetMsgName(source.GetMsgName());
    item->SetIsGroup(source.IsGroup());
    item->SetOrd(source.GetOrd());
    item->SetPictureRef(source.GetPictureRef());
    item->SetTemplateName(source.GetTemplateName());
    auto properties = boost::make_shared<CPropertiesEx>();
    if (auto sourceProperties = source.GetProperties())
        properties->MakeDeepCopy(*sourceProperties);
    item->SetProperties(properties);
    return item;
}

QSize fitted(const QSize& natural, const QSize& box)
{
    if (natural.isEmpty())
        return box.isEmpty() ? QSize() : box;
    if (box.isEmpty())
        return natural;
    return natural.scaled(box, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
}

} // namespace

CDefaultCatalogItemFactory::CDefaultCatalogItemFactory(const QString& pictureFolder)
    : m_pictureFolder(pictureFolder)
{
}

boost::shared_ptr<CCatalogItem> CDefaultCatalogItemFactory::CreateItemFrom(CCatalogItem* source)
{
    if (!source)
        return {};
    return copyOf(*source);
}

boost::shared_ptr<CCatalogItem> CDefaultCatalogItemFactory::CreateItemFromTemplate(
    CCatalogItemTemplate* tmpl)
{
    if (!tmpl)
        return {};
    auto definition = tmpl->GetCatalogItemDefinition();
    if (!definition)
        return {};
    auto item = copyOf(*definition);
    item->SetTemplateName(tmpl->GetName());
    item->SetIsGroup(definition->IsGroup());
    return item;
}

QImage CDefaultCatalogItemFactory::CreatePictureBitmap(const QString& pictureRef,
                                                       CCatalogItem* item, const QRect& rect,
                                                       int* drawMode)
{
    Q_UNUSED(item);
    if (pictureRef.trimmed().isEmpty())
        return {};
    // Relative references are resolved in the picture folder; absolute paths and Qt
    // resource paths (":/...") are taken as they are.
    QString path = pictureRef.trimmed();
    if (QFileInfo(path).isRelative() && !path.startsWith(u':'))
        path = QDir(m_pictureFolder.isEmpty() ? QStringLiteral(".") : m_pictureFolder).filePath(path);
    QFileInfo info(path);
    if (!info.isFile())
        return {};

    QImage image;
    const QString suffix = info.suffix().toLower();
    if (suffix == u"svg" || suffix == u"svgz") {
        QSvgRenderer renderer(path);
        if (!renderer.isValid())
            return {};
        const QSize size = fitted(renderer.defaultSize(), rect.size());
        if (size.isEmpty())
            return {};
        image = QImage(size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        renderer.render(&painter, QRectF(QPointF(0, 0), QSizeF(size)));
    } else {
        QImageReader reader(path);
        const QSize size = fitted(reader.size(), rect.size());
        if (size.isValid() && !size.isEmpty() && reader.size().isValid())
            reader.setScaledSize(size);
        image = reader.read();
        if (!image.isNull() && !rect.size().isEmpty() && image.size() != size && !size.isEmpty())
            image = image.scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    }
    if (image.isNull())
        return {};
    // 1: the picture box centres the image as it is (it is already fitted to the box).
    if (drawMode)
        *drawMode = 1;
    return image;
}

QString CDefaultCatalogItemFactory::GetNewGroupName(int depthLevel, CCatalogItemTemplate* tmpl)
{
    Q_UNUSED(depthLevel);
    Q_UNUSED(tmpl);
    // Empty: the editor then uses its own localised "new group" text (message 4054).
    return {};
}

QString CDefaultCatalogItemFactory::GetNewItemName(CCatalogItemTemplate* tmpl)
{
    if (!tmpl)
        return {};
    auto definition = tmpl->GetCatalogItemDefinition();
    return definition ? definition->GetName() : QString();
}

QString CDefaultCatalogItemFactory::GetGroupIconName(int depthLevel, int opened)
{
    Q_UNUSED(depthLevel);
    return opened ? QStringLiteral("IDI_BOX_OPEN") : QStringLiteral("IDI_BOX_CLOSED");
}

QString CDefaultCatalogItemFactory::GetItemIconName(int isDefault)
{
    return isDefault ? QStringLiteral("IDI_DOC_STARRED") : QStringLiteral("IDI_DOC_PLAIN");
}

} // namespace ZEVGis::Data
