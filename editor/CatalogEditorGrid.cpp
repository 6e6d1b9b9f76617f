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
#include "editor/EditCommands.h"

#include <QAbstractButton>
#include <QScopeGuard>

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
    ShowProperties(item, upper);
}

void CCatalogEditorDlg::OnItemUpdated(CPropertyEx* property)
{
    // Recorded once the edit has had all its effects.
    const auto record = qScopeGuard([this, property] { RecordPropertyEdit(property); });
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
    if (const auto* command = static_cast<Editor::DefaultMarkCommand*>(
            RunEdit(new Editor::DefaultMarkCommand(catalog, item))))
    {
        for (const auto& [marked, isDefault] : command->marks())
            if (auto* markedRow = static_cast<Editor::CatalogTreeRowItem*>(RowOfItem(marked)))
                markedRow->setImageIndex(isDefault ? Editor::ImageDefaultItem : Editor::ImageItem);
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
    int extended = 0;
    RunEdit(new Editor::UpgradeItemCommand(
        GetCatalog(m_shownProperties.upper ? 0 : 1), m_currentItem,
        [reference, &extended](CCatalogItem* item) {
            CCatalogManager* manager = CCatalogManager::Instance();
            manager->UpgradeCatalogItem(reference, item);
            extended = manager->ExtendCatalogItem(reference, item);
            return extended;
        }));
    if (extended)
        ShowProperties(m_currentItem, m_shownProperties.upper);
}

void CCatalogEditorDlg::OnBnClickedBtnTest()
{
    m_grid.SetReadOnly(m_readOnly);
    m_readOnly = !m_readOnly;
}

void CCatalogEditorDlg::RecordPropertyEdit(CPropertyEx* property)
{
    CCatalogItem* item = m_shownProperties.item;
    const auto shown = m_shownProperties.values.find(property);
    if (!property || !item || shown == m_shownProperties.values.end())
        return;
    const Editor::PropertyEditCommand::State before{shown->second, m_shownProperties.name};
    const Editor::PropertyEditCommand::State after{property->GetValue(), item->GetName()};
    shown->second = after.value;
    m_shownProperties.name = after.name;
    RunEdit(new Editor::PropertyEditCommand(GetCatalog(m_shownProperties.upper ? 0 : 1), item,
                                            property, before, after));
}
