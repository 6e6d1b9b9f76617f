#include "impex/ImpexProgress.h"

#include "catalog/CatalogItem.h"
#include "catalog/ModuleConfiguration.h"

#include <QCoreApplication>
#include <algorithm>
#include <QProgressDialog>
#include <QTreeWidgetItem>

namespace ZEVGis::Impex
{

namespace
{

// How often the window's text is renewed and the dialog repaints.
constexpr qint64 kUpdateEveryMs = 50;

} // namespace

TransferProgress::TransferProgress(RepositoryAccess& inner, QWidget* parent, unsigned messageId,
                                   int expected)
    : m_inner(inner), m_parent(parent), m_messageId(messageId), m_expected(expected)
{
}

TransferProgress::~TransferProgress() = default;

int TransferProgress::GetChildCatalogItems(const QString& catalogReference,
                                           const QString& parentId, Records& out)
{
    const int result = m_inner.GetChildCatalogItems(catalogReference, parentId, out);
    Advance(int(out.size()));
    return result;
}

RepositoryAccess::ItemPtr TransferProgress::GetCatalogItemById(const QString& catalogReference,
                                                               const QString& catalogueId)
{
    ItemPtr item = m_inner.GetCatalogItemById(catalogReference, catalogueId);
    Advance(1);
    return item;
}

int TransferProgress::AddCatalogItem(const QString& catalogReference, const QString& catalogName,
                                     ItemPtr item, int flag)
{
    const int result = m_inner.AddCatalogItem(catalogReference, catalogName, item, flag);
    Advance(1);
    return result;
}

int TransferProgress::DeleteCatalogItem(const QString& catalogReference,
                                        const QString& catalogueId)
{
    const int result = m_inner.DeleteCatalogItem(catalogReference, catalogueId);
    Advance(1);
    return result;
}

void TransferProgress::Advance(int records)
{
    m_records += records;
    if (m_records <= kShowAfter)
        return;
    if (!m_window)
    {
        m_window = std::make_unique<QProgressDialog>(m_parent);
        m_window->setWindowModality(Qt::WindowModal);
        m_window->setCancelButton(nullptr);
        m_window->setAutoClose(false);
        m_window->setAutoReset(false);
        m_window->setMinimumDuration(0);
        m_window->setRange(0, m_expected > 0 ? m_expected : 0);
        if (m_parent)
            m_window->setWindowTitle(m_parent->windowTitle());
        m_window->show();
    }
    else if (m_sinceUpdate.isValid() && m_sinceUpdate.elapsed() < kUpdateEveryMs)
        return;
    m_sinceUpdate.start();
    m_window->setLabelText(CModuleConfiguration::Instance()->GetMsg(m_messageId).arg(m_records));
    if (m_expected > 0)
        m_window->setValue(std::min(m_records, m_expected));
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

int SendsFor(const Data::CCatalogItem& item)
{
    if (!item.IsGroup())
        return 1;
    int descendants = 0;
    std::vector<const Data::CCatalogItem*> pending{&item};
    while (!pending.empty())
    {
        const Data::CCatalogItem* current = pending.back();
        pending.pop_back();
        // GetSubItems() has no const form; the map is only read here.
        for (const auto& [guid, sub] : *const_cast<Data::CCatalogItem*>(current)->GetSubItems())
            if (sub)
            {
                ++descendants;
                pending.push_back(sub.get());
            }
    }
    return 2 + descendants;
}

int RowsIn(const QTreeWidgetItem* row)
{
    if (!row)
        return 0;
    int rows = 1;
    for (int i = 0; i < row->childCount(); ++i)
        rows += RowsIn(row->child(i));
    return rows;
}

} // namespace ZEVGis::Impex
