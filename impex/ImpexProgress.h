#pragma once

#include "impex/ImpexRepository.h"

#include <QElapsedTimer>
#include <memory>

class QProgressDialog;
class QTreeWidgetItem;
class QWidget;

namespace ZEVGis::Data
{
class CCatalogItem;
}

namespace ZEVGis::Impex
{

// Passes a transfer's repository calls on, counting the records they move. Once the count
// passes kShowAfter a progress window over `parent` shows it (against `expected` when known,
// busy otherwise) and the dialog keeps painting between calls; user input waits until the
// transfer ends, as the wait cursor says.
class TransferProgress final : public RepositoryAccess
{
public:
    static constexpr int kShowAfter = 300;

    // `messageId`: the window's text, with %1 for the records so far.
    TransferProgress(RepositoryAccess& inner, QWidget* parent, unsigned messageId,
                     int expected = 0);
    ~TransferProgress() override;

    int RecordCount() const { return m_records; }
    // The progress window, once shown; null before.
    QProgressDialog* Window() const { return m_window.get(); }

    int IsInitialized() override { return m_inner.IsInitialized(); }
    int IsRepositoryAccessible() override { return m_inner.IsRepositoryAccessible(); }
    int GetChildCatalogItems(const QString& catalogReference, const QString& parentId,
                             Records& out) override;
    ItemPtr GetCatalogItemById(const QString& catalogReference,
                               const QString& catalogueId) override;
    int AddCatalogItem(const QString& catalogReference, const QString& catalogName, ItemPtr item,
                       int flag) override;
    int DeleteCatalogItem(const QString& catalogReference, const QString& catalogueId) override;
    void BeginAction() override { m_inner.BeginAction(); }
    void EndAction() override { m_inner.EndAction(); }

private:
    void Advance(int records);

    RepositoryAccess& m_inner;
    QWidget* m_parent;
    unsigned m_messageId;
    int m_expected;
    int m_records = 0;
    std::unique_ptr<QProgressDialog> m_window;
    QElapsedTimer m_sinceUpdate;
};

// The sends "->" makes for `item`: the item, and for a group once more with every descendant.
int SendsFor(const Data::CCatalogItem& item);
// `row` and every row below it.
int RowsIn(const QTreeWidgetItem* row);

} // namespace ZEVGis::Impex
