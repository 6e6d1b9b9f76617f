#include "tests/editor/EditorTestStore.h"

#include "catalog/CatalogManager.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QXmlStreamWriter>
#include <boost/make_shared.hpp>

using namespace ZEVGis::Data;

namespace
{

bool writeFile(const QString& path, const QByteArray& bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(bytes);
    return file.commit();
}

} // namespace

EditorTestStore::EditorTestStore(const QString& root) : m_root(root)
{
}

QString EditorTestStore::fileNameOf(const Entry& entry) const
{
    return entry.reference.toLower() + QStringLiteral(".xml");
}

QString EditorTestStore::drawingPath() const
{
    return m_root + QStringLiteral("/drawing/plan.dwg");
}

QByteArray EditorTestStore::catalogFileBytes(const QString& reference) const
{
    for (const Entry& entry : m_entries)
    {
        if (entry.reference == reference)
        {
            QFile file(m_root + QLatin1Char('/') + fileNameOf(entry));
            return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        }
    }
    return {};
}

bool EditorTestStore::write()
{
    QByteArray registry;
    QXmlStreamWriter writer(&registry);
    writer.setAutoFormatting(true);
    writer.writeStartDocument();
    writer.writeStartElement(QStringLiteral("registry"));
    for (const Entry& entry : m_entries)
    {
        writer.writeStartElement(QStringLiteral("catalog"));
        writer.writeAttribute(QStringLiteral("reference"), entry.reference);
        writer.writeAttribute(QStringLiteral("name"), entry.nameUI);
        writer.writeAttribute(QStringLiteral("file"), fileNameOf(entry));
        writer.writeAttribute(QStringLiteral("hidden"), QString::number(entry.hidden));
        writer.writeAttribute(QStringLiteral("drawingVersion"), QString::number(entry.drawingVersion));
        writer.writeAttribute(QStringLiteral("maxDepth"), QString::number(entry.maxDepth));
        writer.writeAttribute(QStringLiteral("allowDefault"), QString::number(entry.allowDefault));
        writer.writeAttribute(QStringLiteral("disableNewItems"), QString::number(entry.disableNewItems));
        writer.writeEndElement();

        auto catalog = entry.catalog ? entry.catalog : boost::make_shared<CCatalog>();
        catalog->SetReference(entry.reference);
        if (!writeFile(m_root + QLatin1Char('/') + fileNameOf(entry), catalog->GetXMLBytes()))
            return false;
    }
    writer.writeEndElement();
    writer.writeEndDocument();
    if (!writeFile(m_root + QStringLiteral("/registry.xml"), registry))
        return false;
    reopen();
    return true;
}

void EditorTestStore::reopen() const
{
    CCatalogManager::Instance()->Configure(m_root, drawingPath());
}
