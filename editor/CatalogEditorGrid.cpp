// The property grid and the picture box: the selection shown, the grid's callbacks and the
// small commands on the current item ("*", "Info", Ctrl+"NEW", the hidden "Test").
#include "editor/CatalogEditorDlg.h"

#include "catalog/Catalog.h"
#include "catalog/CatalogItem.h"
#include "catalog/CatalogItemTemplate.h"
#include "catalog/CatalogManager.h"
#include "catalog/CatalogMetadata.h"
#include "controls/PictureBox.h"
#include "controls/PicturePreviewDlg.h"
#include "editor/CatalogEditorIds.h"
#include "editor/DefaultItemMarking.h"

#include <QAbstractButton>

using namespace ZEVGis;
using namespace ZEVGis::Data;
using ZEVGis::Editor::CatalogTreeWidget;
namespace Ids = ZEVGis::Editor::Ids;

namespace
{
QRect ScreenRect(const QWidget* widget)
{
    return QRect(widget->mapToGlobal(QPoint(0, 0)), widget->size());
}
} // namespace

void CCatalogEditorDlg::ClearPicture()
{
    m_pictureBox->SetBitmap(QImage());
    m_pictureBox->update();
}

void CCatalogEditorDlg::ShowPicture(const QImage& picture, int drawMode)
{
    m_pictureDrawMode = drawMode;
    m_pictureBox->SetDrawMode(unsigned(drawMode));
    m_pictureBox->SetBitmap(picture);
    m_pictureBox->update();
}

void CCatalogEditorDlg::ShowSelection(bool upper)
{
    m_currentItem = nullptr;
    ClearPicture();
    CatalogTreeWidget* tree = upper ? m_drawingTree : m_catalogTree;
    QTreeWidgetItem* row = tree->currentItem();
    m_grid.ClearGrid();
    if (!row)
        return;
    CCatalogItem* item = Editor::CatalogItemOfRow(row);
    UpdateButtons(item, upper);
    if (!item)
        return;

    const QString pictureRef = item->GetPictureRef();
    if (!pictureRef.isEmpty())
    {
        const auto catalog = GetCatalog(upper ? 0 : 1);
        const auto factory = catalog ? catalog->GetFactory() : nullptr;
        int mode = m_pictureDrawMode;
        const QImage picture = factory ? factory->CreatePictureBitmap(
                                             pictureRef, item, ScreenRect(m_pictureBox), &mode)
                                       : QImage();
        if (!picture.isNull())
            ShowPicture(picture, mode);
    }
    m_currentItem = item;
    m_grid.SetDataToShow(item->GetProperties(), 1, 0);
}

void CCatalogEditorDlg::OnItemUpdated(CPropertyEx* property)
{
    if (!property || property->GetTag() != QString::fromUtf16(CatalogItemNameTag))
        return;
    if (QTreeWidgetItem* row = m_catalogTree->currentItem())
        row->setText(0, property->GetValue().ToString());
}

void CCatalogEditorDlg::OnItemSelChanged(CPropertyEx* property)
{
    if (!property)
        return;
    const bool upper = m_activeTree == 1;
    const auto catalog = GetCatalog(upper ? 0 : 1);
    CCatalogItem* item = Editor::CatalogItemOfRow((upper ? m_drawingTree : m_catalogTree)->currentItem());
    if (!catalog || !item)
        return;
    int mode = 2;
    const auto factory = catalog->GetFactory();
    const QImage picture =
        factory ? factory->CreatePictureBitmap(property->GetPictureRef(), item,
                                               ScreenRect(m_pictureBox), &mode)
                : QImage();
    if (!picture.isNull())
        ShowPicture(picture, mode);
    else
        m_pictureBox->SetBitmap(QImage());
    m_pictureBox->update();
}

void CCatalogEditorDlg::OnBnClickedBtnSetDefault()
{
    QTreeWidgetItem* row = m_catalogTree->currentItem();
    if (!row)
        return;
    const auto catalog = GetCatalog(1);
    CCatalogItem* item = Editor::CatalogItemOfRow(row);
    if (!catalog || !item || item->IsGroup())
        return;
    for (CCatalogItem* cleared : Editor::MarkDefaultItem(*catalog, *item))
    {
        if (auto* clearedRow = static_cast<Editor::CatalogTreeRowItem*>(RowOfItem(cleared)))
            clearedRow->setImageIndex(Editor::ImageItem);
    }
    if (row->type() == Editor::CatalogTreeRowItem::RowType)
        static_cast<Editor::CatalogTreeRowItem*>(row)->setImageIndex(Editor::ImageDefaultItem);
}

void CCatalogEditorDlg::OnBnClickedBtnInfo()
{
    const auto tmpl = SelectedTemplate();
    if (!tmpl)
        return;
    const auto definition = tmpl->GetCatalogItemDefinition();
    const QString reference = definition ? definition->GetPictureRef() : QString();
    const auto catalog = GetCatalog(1);
    if (!catalog)
        return;
    QAbstractButton* info = Button(Ids::BtnInfo);
    const QRect infoRect = ScreenRect(info);
    CPicturePreviewDlg preview;
    preview.SetPictureRef(reference);
    preview.SetItem(definition);
    preview.SetCatalog(catalog);
    preview.SetPosition(infoRect.right() + 1, infoRect.top());
    preview.exec();
}

void CCatalogEditorDlg::UpgradeCurrentItem()
{
    const auto metadata = SelectedMetadata();
    if (!metadata || !m_currentItem)
        return;
    const QString reference = metadata->GetCatalogReference();
    CCatalogManager* manager = CCatalogManager::Instance();
    manager->UpgradeCatalogItem(reference, m_currentItem);
    if (manager->ExtendCatalogItem(reference, m_currentItem))
        m_grid.SetDataToShow(m_currentItem->GetProperties(), 1, 0);
}

void CCatalogEditorDlg::OnBnClickedBtnTest()
{
    m_grid.SetReadOnly(m_readOnly);
    m_readOnly = !m_readOnly;
}
