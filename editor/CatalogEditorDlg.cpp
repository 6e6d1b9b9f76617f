#include "editor/CatalogEditorDlg.h"

#include "catalog/Catalog.h"
#include "catalog/CatalogItem.h"
#include "catalog/CatalogItemTemplate.h"
#include "catalog/CatalogManager.h"
#include "catalog/CatalogMetadata.h"
#include "catalog/ModuleConfiguration.h"
#include "editor/CatalogComboLines.h"
#include "editor/CatalogEditorIds.h"
#include "host/HostServices.h"
#include "trace/FunctionTracer.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QMetaObject>
#include <QUndoStack>

using namespace ZEVGis;
using namespace ZEVGis::Data;
namespace Ids = ZEVGis::Editor::Ids;

Q_DECLARE_METATYPE(boost::shared_ptr<ZEVGis::Data::CCatalogMetadata>)
Q_DECLARE_METATYPE(boost::shared_ptr<ZEVGis::Data::CCatalogItemTemplate>)

CCatalogEditorDlg::CCatalogEditorDlg(QWidget* parent) : QDialog(parent)
{
    CreateControls();
    CreateFilterField();
    CreateUndo();
    PlaceControls();
    PlaceFilterField();
}

CCatalogEditorDlg::~CCatalogEditorDlg()
{
    m_grid.SetCallbackChange(nullptr);
    m_grid.SetCallbackUpdate(nullptr);
    // The controls outlive this part of the object while QWidget deletes them: nothing they
    // signal may reach the dialog any more.
    for (QObject* child : findChildren<QObject*>())
        child->disconnect(this);
    m_drawingTree->removeEventFilter(this);
    m_catalogTree->removeEventFilter(this);
    DropTreeRows();
    if (m_initDone)
        CCatalogManager::Instance()->KillGdiPlus();
}

void CCatalogEditorDlg::SetCatalogReference(const QString& reference)
{
    m_catalogReference = reference;
}

void CCatalogEditorDlg::SetShowHiddenCatalogs(int show)
{
    m_showHiddenCatalogs = show;
}

int CCatalogEditorDlg::exec()
{
    // Without a catalog to offer the dialog never opens.
    if (!OnInitDialog())
    {
        setResult(QDialog::Rejected);
        return QDialog::Rejected;
    }
    return QDialog::exec();
}

void CCatalogEditorDlg::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    if (!OnInitDialog())
        QMetaObject::invokeMethod(this, &QDialog::reject, Qt::QueuedConnection);
}

bool CCatalogEditorDlg::OnInitDialog()
{
    if (m_initDone)
        return m_initOk;
    m_initDone = true;

    CCatalogManager::Instance()->InitGdiPlus();
    m_gridCreated = m_grid.CreatePropertyGrid(this, Ids::GridPlaceholder, Ids::Grid) != 0;
    if (m_gridCreated)
    {
        m_grid.SetCallbackUpdate(this);
        m_grid.SetCallbackChange(this);
        m_grid.SetDoubleValuePrecision(6);
        m_grid.ShowToolBar(0);
    }
    CreateSplitter();
    SetUpResizing();
    RestorePlacement();
    LoadIcons();
    LoadTexts();
    SetTabOrder();

    FillCatalogCombo();
    if (m_catalogCombo->count() == 0)
    {
        // The text is fixed; why the registry offers nothing is in the details.
        Host::HostServices::current().alertWithDetails(
            QStringLiteral("Catalog error!"),
            CCatalogManager::Instance()->TakeErrors().join(QLatin1Char('\n')), this);
        m_initOk = false;
        return false;
    }
    OnCbnSelchangeComboCatalog();
    for (int id : {Ids::BtnAddGroup, Ids::BtnNew, Ids::BtnNewItems, Ids::BtnDelete, Ids::BtnUp,
                   Ids::BtnDown, Ids::BtnSort, Ids::BtnSetDefault})
        EnableButton(id, false);
    SelectInitialEntry();
    m_initOk = true;
    return true;
}

void CCatalogEditorDlg::SetInitialSelection(const QString& guidOrName)
{
    m_initialSelection = guidOrName;
}

void CCatalogEditorDlg::SelectInitialEntry()
{
    const auto catalog = GetCatalog(1);
    if (m_initialSelection.isEmpty() || !catalog)
        return;
    CCatalogItem* item = catalog->GetItembyGuid(m_initialSelection).get();
    for (const auto& [guid, candidate] : *catalog->GetAllElementsMap())
        if (!item && candidate->GetName() == m_initialSelection)
            item = candidate.get();
    QTreeWidgetItem* row = item ? RowOfItem(item) : nullptr;
    if (!row)
        return;
    for (QTreeWidgetItem* up = row->parent(); up; up = up->parent())
        up->setExpanded(true);
    m_catalogTree->setFocus(Qt::OtherFocusReason);
    m_catalogTree->setCurrentItem(row);
    m_catalogTree->scrollToItem(row);
    OnTreeFocus(false);
}

void CCatalogEditorDlg::FillCatalogCombo()
{
    std::vector<boost::shared_ptr<CCatalogMetadata>> registry;
    CCatalogManager::Instance()->GetCatalogRegistry(registry);
    const Editor::CatalogComboContent content =
        Editor::BuildCatalogComboLines(registry, m_showHiddenCatalogs != 0, m_catalogReference);
    const QSignalBlocker blocker(m_catalogCombo);
    m_catalogCombo->clear();
    for (const auto& line : content.lines)
        m_catalogCombo->addItem(line.text, QVariant::fromValue(line.metadata));
    if (!content.lines.empty())
        m_catalogCombo->setCurrentIndex(content.selected);
}

boost::shared_ptr<CCatalogMetadata> CCatalogEditorDlg::SelectedMetadata() const
{
    return m_catalogCombo->currentData().value<boost::shared_ptr<CCatalogMetadata>>();
}

boost::shared_ptr<CCatalogItemTemplate> CCatalogEditorDlg::SelectedTemplate() const
{
    return m_templateCombo->currentData().value<boost::shared_ptr<CCatalogItemTemplate>>();
}

boost::shared_ptr<CCatalog> CCatalogEditorDlg::GetCatalog(int which)
{
    ZEVX_TRACE_FUNCTION("CCatalogEditorDlg::GetCatalog", "CatalogEditorDlg", 964);
    boost::shared_ptr<CCatalog> ptrCatalog;
    if (const auto metadata = SelectedMetadata())
        ptrCatalog = CCatalogManager::Instance()->GetCatalog(metadata->GetCatalogReference(), which);
    ZEVX_TRACE_VERIFY(ptrCatalog.get() != 0, 977);
    return ptrCatalog;
}

void CCatalogEditorDlg::SaveCatalogShownBefore()
{
    if (m_selectedCatalogIndex < 0 || m_selectedCatalogIndex >= m_catalogCombo->count())
        return;
    const auto metadata = m_catalogCombo->itemData(m_selectedCatalogIndex)
                              .value<boost::shared_ptr<CCatalogMetadata>>();
    if (!metadata)
        return;
    CCatalogManager* manager = CCatalogManager::Instance();
    if (const auto catalog = manager->GetCatalog(metadata->GetCatalogReference(), 1))
        manager->Save(catalog->GetReference(), 1, 1);
}

void CCatalogEditorDlg::OnCbnSelchangeComboCatalog()
{
    // Saving the catalog shown before and loading the next one may take a while.
    const Host::WaitCursor wait;
    ClearPicture();
    SaveCatalogShownBefore();
    // The edits of the catalog shown before are saved: they can no longer be taken back.
    m_undoStack->clear();
    m_templates.clear();
    m_grid.ClearGrid();
    m_currentItem = nullptr;

    m_selectedCatalogIndex = m_catalogCombo->currentIndex();
    const auto metadata = SelectedMetadata();
    if (!metadata)
        return;
    const QString reference = metadata->GetCatalogReference();

    const bool drawingVersion = metadata->GetMaintainDocumentSpecificVersion() != 0;
    m_drawingTree->setEnabled(drawingVersion);
    EnableButton(Ids::BtnAddToApp, drawingVersion);
    const bool newItemsAllowed = metadata->GetDisableNewItems() == 0;
    if (!newItemsAllowed)
    {
        for (int id : {Ids::BtnAddGroup, Ids::BtnNew, Ids::BtnNewItems})
            EnableButton(id, false);
    }
    else
        EnableButton(Ids::BtnAddGroup, true);
    EnableButton(Ids::BtnDelete, newItemsAllowed);

    FillTemplateCombo(reference);

    CCatalogManager* manager = CCatalogManager::Instance();
    const auto drawingCatalog = manager->GetCatalog(reference, 0);
    const auto catalog = manager->GetCatalog(reference, 1);
    ApplyCatalogIcons(catalog.get(), *metadata);
    FillTree(true, drawingCatalog.get());
    FillTree(false, catalog.get());
    ShowLoadNotice(*metadata);
}

void CCatalogEditorDlg::FillTemplateCombo(const QString& reference)
{
    CCatalogManager::Instance()->GetCatalogItemTemplates(reference, m_templates);
    m_templateCombo->clear();
    for (const auto& tmpl : Editor::OfferedTemplates(m_templates))
        m_templateCombo->addItem(tmpl->GetName(), QVariant::fromValue(tmpl));
    if (m_templateCombo->count() > 0)
        m_templateCombo->setCurrentIndex(0);
}

void CCatalogEditorDlg::ApplyCatalogIcons(CCatalog* catalog, const CCatalogMetadata& metadata)
{
    if (!catalog)
        return;
    const auto factory = catalog->GetFactory();
    if (!factory)
        return;
    m_groupIconName = factory->GetGroupIconName(metadata.GetMaxDepthlevel(), 0);
    m_itemIconName = factory->GetItemIconName(0);
    const CModuleConfiguration* configuration = CModuleConfiguration::Instance();
    m_images[Editor::ImageGroup] = configuration->GetIcon(m_groupIconName);
    m_images[Editor::ImageItem] = configuration->GetIcon(m_itemIconName);
}
