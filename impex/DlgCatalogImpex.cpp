// The dialog's start-up, controls, texts, images, modes and tree fills.
#include "impex/DlgCatalogImpex.h"

#include "catalog/Catalog.h"
#include "catalog/CatalogItem.h"
#include "catalog/CatalogManager.h"
#include "catalog/ModuleConfiguration.h"
#include "controls/ControlId.h"
#include "controls/DialogUnits.h"
#include "controls/ResizeAnchors.h"
#include "host/HostServices.h"
#include "controls/TreeRowWalk.h"
#include "impex/ImpexIds.h"
#include "impex/ImpexTransfers.h"

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <boost/make_shared.hpp>

using namespace ZEVGis;
using ZEVGis::Data::CCatalog;
using ZEVGis::Data::CCatalogItem;
namespace Ids = ZEVGis::Impex::Ids;

namespace
{

// Template 130: 439 x 329 dialog units.
constexpr int TemplateWidth = 439;
constexpr int TemplateHeight = 329;

// The file radio is wider than the template's (106 units instead of 72) and the path starts
// after it: its text, "External XML file" or "Vanjska XML datoteka", is longer.
constexpr TemplatePlacement TemplatePlacements[] = {
    {Ids::ModeGroupBox, 7, 3, 425, 46},     {Ids::RadioFile, 17, 16, 106, 10},
    {Ids::RadioRepository, 17, 33, 110, 10}, {Ids::EditPath, 125, 15, 279, 12},
    {Ids::BtnBrowse, 407, 13, 18, 16},      {Ids::LocalCaption, 7, 51, 176, 8},
    {Ids::TargetCaption, 233, 51, 176, 8},  {Ids::TreeLocal, 7, 63, 199, 238},
    {Ids::TreeTarget, 233, 63, 199, 238},   {Ids::BtnAdd, 210, 62, 19, 17},
    {Ids::BtnRemove, 210, 82, 19, 17},      {Ids::BtnDel, 210, 103, 19, 17},
    {Ids::Ok, 328, 308, 50, 14},            {Ids::Close, 382, 308, 50, 14},
};

// The trees' image list, by index.
constexpr const char* TreeIconNames[Impex::ImpexImageCount] = {
    "IDI_INDEX",   "IDI_ADD_GROUP", "IDI_DELETE_GROUP", "IDI_NEW_GROUP", "IDI_BOX_CLOSED",
    "IDI_BOX_OPEN", "IDI_DOC_PLAIN", "IDI_DISKDATA",    "IDI_DWG"};

template <typename W> W* Identified(W* widget, int id)
{
    setControlId(widget, id);
    return widget;
}

QPushButton* IconButton(const QString& text, int id, QWidget* parent)
{
    // The template's text names the button for screen readers; the icon is what shows.
    auto* button = Identified(new QPushButton(parent), id);
    button->setAccessibleName(text);
    button->setToolTip(text);
    button->setAutoDefault(false);
    return button;
}

} // namespace

CDlgCatalogImpex::CDlgCatalogImpex(QWidget* parent)
    : QDialog(parent), m_fileCatalog(boost::make_shared<CCatalog>()),
      m_repository(Impex::ClientRepository())
{
    CreateControls();
}

CDlgCatalogImpex::~CDlgCatalogImpex() = default;

void CDlgCatalogImpex::SetParameters(int direction, const QString& catalogReference)
{
    m_nDirection = direction;
    m_strCatalogReference = catalogReference;
}

void CDlgCatalogImpex::SetLocalCatalog(boost::shared_ptr<CCatalog> catalog)
{
    m_localCatalog = std::move(catalog);
}

void CDlgCatalogImpex::SetRepository(Impex::RepositoryAccess* repository)
{
    m_repository = repository;
}

int CDlgCatalogImpex::exec()
{
    if (!OnInitDialog())
    {
        setResult(QDialog::Rejected);
        return QDialog::Rejected;
    }
    return QDialog::exec();
}

void CDlgCatalogImpex::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    if (!OnInitDialog())
        QMetaObject::invokeMethod(this, &QDialog::reject, Qt::QueuedConnection);
}

bool CDlgCatalogImpex::OnInitDialog()
{
    if (m_initDone)
        return m_localCatalog != nullptr;
    m_initDone = true;

    if (!RepositoryUsable() || !m_repository->IsInitialized())
        m_radioRepository->setEnabled(false);
    // Without a local catalog the dialog ends as cancelled; the rest still runs without it.
    m_fileCatalog->SetReference(m_strCatalogReference);
    LoadTexts();
    LoadImages();
    ApplyRegistryEntry();
    FillCatalogTree(*m_treeTarget, m_fileCatalog.get());
    m_nMode = 0;
    UpdateData(false);
    UpdateModeControls();
    return m_localCatalog != nullptr;
}

void CDlgCatalogImpex::CreateControls()
{
    setWindowTitle(QStringLiteral("Import/export kataloga"));
    setSizeGripEnabled(true);
    Identified(new QGroupBox(this), Ids::ModeGroupBox);
    m_radioFile = Identified(new QRadioButton(QStringLiteral("Vanjska datoteka"), this), Ids::RadioFile);
    m_radioRepository =
        Identified(new QRadioButton(QStringLiteral("Mrežni repozitorij"), this), Ids::RadioRepository);
    m_editPath = Identified(new QLineEdit(this), Ids::EditPath);
    m_btnBrowse = IconButton(QStringLiteral("Button1"), Ids::BtnBrowse, this);
    Identified(new QLabel(QStringLiteral("Postojeći katalog"), this), Ids::LocalCaption);
    Identified(new QLabel(QStringLiteral("Datoteka:"), this), Ids::TargetCaption);
    m_treeLocal = Identified(new CClrTreeCtrl(this), Ids::TreeLocal);
    m_treeTarget = Identified(new CClrTreeCtrl(this), Ids::TreeTarget);
    m_btnAdd = IconButton(QStringLiteral("->"), Ids::BtnAdd, this);
    m_btnRemove = IconButton(QStringLiteral("<-"), Ids::BtnRemove, this);
    m_btnDel = IconButton(QStringLiteral("Del"), Ids::BtnDel, this);
    m_btnOk = Identified(new QPushButton(QStringLiteral("OK"), this), Ids::Ok);
    m_btnOk->setDefault(true);
    m_btnClose = Identified(new QPushButton(QStringLiteral("Close"), this), Ids::Close);
    m_btnClose->setAutoDefault(false);

    resize(DialogUnitsToPixels(0, 0, TemplateWidth, TemplateHeight).size());
    setMinimumSize(size());
    PlaceTemplateControls(this, TemplatePlacements);
    SetUpResizing();
    SetTabOrder();
    ConnectControls();
}

void CDlgCatalogImpex::ConnectControls()
{
    const std::pair<QAbstractButton*, void (CDlgCatalogImpex::*)()> commands[] = {
        {m_btnBrowse, &CDlgCatalogImpex::OnBnClickedBtnBrowse},
        {m_btnAdd, &CDlgCatalogImpex::OnBnClickedBtnAdd},
        {m_btnRemove, &CDlgCatalogImpex::OnBnClickedBtnRemove},
        {m_btnOk, &CDlgCatalogImpex::OnOK},
        {m_radioRepository, &CDlgCatalogImpex::OnBnClickedRadioRepository},
        {m_radioFile, &CDlgCatalogImpex::OnBnClickedRadioFile},
        {m_btnDel, &CDlgCatalogImpex::OnBnClickedBtnDel},
        {m_btnClose, &QDialog::reject},
    };
    for (const auto& [button, handler] : commands)
        connect(button, &QAbstractButton::clicked, this, handler);
}

void CDlgCatalogImpex::SetUpResizing()
{
    m_anchors = new CResizeAnchors(this);
    m_anchors->Init();
    struct Rule
    {
        std::initializer_list<int> ids;
        double left, top, right, bottom;
    };
    // The trees share the growth; the buttons between them stay in the middle.
    const Rule rules[] = {
        {{Ids::ModeGroupBox, Ids::EditPath}, 0, 0, 1, 0},
        {{Ids::BtnBrowse}, 1, 0, 1, 0},
        {{Ids::TreeLocal}, 0, 0, 0.5, 1},
        {{Ids::TreeTarget}, 0.5, 0, 1, 1},
        {{Ids::TargetCaption}, 0.5, 0, 1, 0},
        {{Ids::BtnAdd, Ids::BtnRemove, Ids::BtnDel}, 0.5, 0, 0.5, 0},
        {{Ids::Ok, Ids::Close}, 1, 1, 1, 1},
    };
    for (const Rule& rule : rules)
        for (int id : rule.ids)
            m_anchors->setResize(id, rule.left, rule.top, rule.right, rule.bottom);
}

void CDlgCatalogImpex::SetTabOrder()
{
    // Mode and path along the top, then left to right through the trees, then the closing
    // buttons.
    static constexpr int order[] = {Ids::RadioFile, Ids::RadioRepository, Ids::EditPath,
                                    Ids::BtnBrowse, Ids::TreeLocal,       Ids::BtnAdd,
                                    Ids::BtnRemove, Ids::BtnDel,          Ids::TreeTarget,
                                    Ids::Ok,        Ids::Close};
    QWidget* previous = nullptr;
    for (int id : order)
    {
        QWidget* control = findControlById(this, id);
        control->setFocusPolicy(Qt::StrongFocus);
        if (previous)
            setTabOrder(previous, control);
        previous = control;
    }
}

void CDlgCatalogImpex::LoadImages()
{
    const CModuleConfiguration* configuration = CModuleConfiguration::Instance();
    m_imageList.clear();
    for (const char* name : TreeIconNames)
        m_imageList.push_back(configuration->GetIcon(QString::fromLatin1(name)));
    m_treeLocal->SetImageList(m_imageList);
    m_treeTarget->SetImageList(m_imageList);
    const struct
    {
        QPushButton* button;
        const char* icon;
        int size;
    } buttons[] = {{m_btnAdd, "IDI_NAV_RIGHT", 24},
                   {m_btnRemove, "IDI_NAV_LEFT", 24},
                   {m_btnBrowse, "IDI_OPEN", 16},
                   {m_btnDel, "IDI_DELETE", 16}};
    for (const auto& entry : buttons)
    {
        const QPixmap pixmap = configuration->LoadImageW(
            QString::fromLatin1(entry.icon), CModuleConfiguration::ImageIcon, entry.size,
            entry.size, 0);
        entry.button->setIcon(QIcon(pixmap));
        entry.button->setIconSize(QSize(entry.size, entry.size));
    }
}

void CDlgCatalogImpex::LoadTexts()
{
    const CModuleConfiguration* configuration = CModuleConfiguration::Instance();
    setWindowTitle(configuration->GetMsg(m_nDirection == Export ? 8531 : 8530));
    const std::pair<int, unsigned> texts[] = {
        {Ids::LocalCaption, 350}, {Ids::TargetCaption, 250}, {Ids::RadioFile, 250},
        {Ids::RadioRepository, 10276}, {Ids::Ok, 60}, {Ids::Close, 67}};
    for (const auto& [id, message] : texts)
    {
        QWidget* control = findControlById(this, id);
        if (auto* label = qobject_cast<QLabel*>(control))
            label->setText(configuration->GetMsg(message));
        else if (auto* button = qobject_cast<QAbstractButton*>(control))
            button->setText(configuration->GetMsg(message));
    }
}

// The registry entry of the catalog: its name, the catalog's own group and item icons, and
// the left tree.
void CDlgCatalogImpex::ApplyRegistryEntry()
{
    std::vector<boost::shared_ptr<Data::CCatalogMetadata>> registry;
    Data::CCatalogManager::Instance()->GetCatalogRegistry(registry);
    for (const auto& entry : registry)
    {
        if (!entry || entry->GetHidden() || entry->GetCatalogReference() != m_strCatalogReference)
            continue;
        m_strCatalogName = entry->GetCatalogNameUI();
        if (!m_localCatalog)
            continue;
        if (const auto factory = m_localCatalog->GetFactory())
        {
            m_strGroupIconName = factory->GetGroupIconName(entry->GetMaxDepthlevel(), 0);
            m_strItemIconName = factory->GetItemIconName(0);
            const CModuleConfiguration* configuration = CModuleConfiguration::Instance();
            m_imageList[Impex::ImageGroup] = configuration->GetIcon(m_strGroupIconName);
            m_imageList[Impex::ImageItem] = configuration->GetIcon(m_strItemIconName);
            m_treeLocal->SetImageList(m_imageList);
            m_treeTarget->SetImageList(m_imageList);
        }
        FillCatalogTree(*m_treeLocal, m_localCatalog.get());
    }
}

void CDlgCatalogImpex::UpdateData(bool saveAndValidate)
{
    if (saveAndValidate)
    {
        m_strPath = m_editPath->text();
        m_nMode = m_radioRepository->isChecked() ? 1 : 0;
        return;
    }
    m_editPath->setText(m_strPath);
    (m_nMode == 1 ? m_radioRepository : m_radioFile)->setChecked(true);
}

void CDlgCatalogImpex::UpdateModeControls()
{
    UpdateData(true);
    const bool fileMode = m_nMode == 0;
    m_editPath->setEnabled(fileMode);
    m_btnBrowse->setEnabled(fileMode);
    m_btnDel->setEnabled(!fileMode);
    if (auto* caption = qobject_cast<QLabel*>(findControlById(this, Ids::TargetCaption)))
        caption->setText(CModuleConfiguration::Instance()->GetMsg(fileMode ? 250 : 10276));
}

void CDlgCatalogImpex::OnBnClickedRadioFile()
{
    UpdateModeControls();
}

void CDlgCatalogImpex::OnBnClickedRadioRepository()
{
    UpdateModeControls();
    ReloadNetworkRepoItems();
}

void CDlgCatalogImpex::RedrawTrees()
{
    m_treeLocal->viewport()->update();
    m_treeTarget->viewport()->update();
}

void CDlgCatalogImpex::FillCatalogTree(CClrTreeCtrl& tree, CCatalog* catalog)
{
    Host::WaitCursor wait;
    const bool left = &tree == m_treeLocal;
    auto& rows = left ? m_leftItemsByGuid : m_rightItemsByGuid;
    ForgetTree(tree);
    tree.DeleteAllItems();
    rows.clear();
    if (!left)
    {
        m_repositoryItems.clear();
        m_shownFileCatalog.reset();
        m_rightShowsRecords = false;
    }

    const QString rootText = CModuleConfiguration::Instance()->GetMsg(350) +
                             (left ? QStringLiteral(" - Disk") : QString());
    // Rows are built detached from the view and shown in one insertion.
    auto* root = new CClrTreeItem(rootText, left ? Impex::ImageLeftRoot : Impex::ImageRightRoot,
                                  nullptr);
    (left ? m_hLeftRoot : m_hRightRoot) = root;
    if (catalog)
    {
        for (const auto& [guid, element] : *catalog->GetRootElementsMap())
        {
            if (!element)
                continue;
            auto* row = new CClrTreeItem(element->GetName(), Impex::ImageGroup, element.get());
            root->addChild(row);
            rows[element->GetGUID()] = row;
            AddCatalogRows(row, element.get(), rows);
        }
    }
    tree.addTopLevelItem(root);
    // The sort request goes to the left tree whichever tree was filled: the right tree's top
    // level keeps the catalog's root-element order.
    m_treeLocal->SortChildrenCB(root, &Impex::CompareCatalogItems);
    root->setExpanded(true);
}

void CDlgCatalogImpex::AddCatalogRows(QTreeWidgetItem* parentRow, CCatalogItem* item,
                                      std::map<QString, QTreeWidgetItem*>& rows)
{
    // Depth first without recursion: catalogs may be deep.
    std::vector<std::pair<CCatalogItem*, QTreeWidgetItem*>> pending{{item, parentRow}};
    std::vector<boost::shared_ptr<CCatalogItem>> subItems;
    while (!pending.empty())
    {
        const auto [parent, row] = pending.back();
        pending.pop_back();
        subItems.clear();
        parent->GetSortedSubItems(subItems);
        const size_t firstPending = pending.size();
        for (const auto& sub : subItems)
        {
            if (!sub)
                continue;
            auto* child = new CClrTreeItem(
                sub->GetName(), sub->IsGroup() ? Impex::ImageGroup : Impex::ImageItem, sub.get());
            row->addChild(child);
            rows[sub->GetGUID()] = child;
            if (!sub->GetSubItems()->empty() && pending.size() < 1000000)
                pending.emplace_back(sub.get(), child);
        }
        std::reverse(pending.begin() + std::ptrdiff_t(firstPending), pending.end());
    }
}

void CDlgCatalogImpex::ForgetRows(QTreeWidgetItem* row)
{
    if (!row)
        return;
    const bool left = row->treeWidget() == m_treeLocal;
    auto& rows = left ? m_leftItemsByGuid : m_rightItemsByGuid;
    const bool records = !left && m_rightShowsRecords;
    Utility::WalkRows(
        row,
        [&](QTreeWidgetItem* current)
        {
            m_transferredItems.erase(current);
            if (const void* data = CClrTreeCtrl::GetItemData(current))
            {
                const QString key =
                    records ? QString::fromStdWString(
                                  static_cast<const Repository::CNetCatalogueItem*>(data)
                                      ->GetCatalogueId())
                            : static_cast<const CCatalogItem*>(data)->GetGUID();
                const auto it = rows.find(key);
                if (it != rows.end() && it->second == current)
                    rows.erase(it);
            }
            return true;
        });
}

void CDlgCatalogImpex::ForgetTree(CClrTreeCtrl& tree)
{
    for (auto it = m_transferredItems.begin(); it != m_transferredItems.end();)
        it = (*it)->treeWidget() == &tree ? m_transferredItems.erase(it) : std::next(it);
}

bool CDlgCatalogImpex::RepositoryUsable() const
{
    return m_repository != nullptr;
}
