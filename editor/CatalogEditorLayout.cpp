// The dialog's controls, their places at the initial size, resize anchors, icons and texts.
#include "editor/CatalogEditorDlg.h"

#include "catalog/ModuleConfiguration.h"
#include "controls/ControlId.h"
#include "controls/DialogUnits.h"
#include "controls/PictureBox.h"
#include "controls/ResizeAnchors.h"
#include "controls/SplitterControl.h"
#include "controls/TabOrder.h"
#include "controls/ZEVBitmapButton.h"
#include "editor/CatalogEditorIds.h"

#include <QComboBox>
#include <QFrame>
#include <QGroupBox>
#include <QKeySequence>
#include <QLineEdit>
#include <QLabel>
#include <QPushButton>

using namespace ZEVGis;
using ZEVGis::Editor::CatalogTreeWidget;
using ZEVGis::Utility::CZEVBitmapButton;
namespace Ids = ZEVGis::Editor::Ids;

namespace
{

// The dialog template measures 670 x 434 dialog units; at its initial size the dialog fills
// its minimum tracking size (the scale of controls/DialogUnits.h).
constexpr int MinimumWidth = 1013;
constexpr int MinimumHeight = 735;

// Positions of template 102.
constexpr TemplatePlacement TemplatePlacements[] = {
    {Ids::CatalogCombo, 7, 7, 216, 14},     {Ids::DrawingCaption, 7, 25, 216, 10},
    {Ids::DrawingTree, 7, 36, 216, 150},    {Ids::BtnAddToApp, 7, 189, 216, 16},
    {Ids::Splitter, 7, 207, 216, 3},        {Ids::CatalogTree, 7, 212, 216, 162},
    {Ids::BtnAddGroup, 7, 378, 20, 20},     {Ids::BtnNewItems, 29, 378, 20, 20},
    {Ids::BtnDelete, 51, 378, 20, 20},      {Ids::BtnUp, 73, 378, 20, 20},
    {Ids::BtnDown, 95, 378, 20, 20},        {Ids::BtnSetDefault, 117, 378, 20, 20},
    {Ids::Separator, 141, 378, 2, 20},      {Ids::BtnSort, 147, 378, 20, 20},
    {Ids::BtnImport, 169, 378, 20, 20},     {Ids::BtnExport, 191, 378, 20, 20},
    {Ids::TemplateGroupBox, 7, 401, 216, 30}, {Ids::TemplateCombo, 13, 412, 160, 14},
    {Ids::BtnNew, 177, 410, 20, 18},        {Ids::BtnInfo, 199, 410, 20, 18},
    {Ids::GridPlaceholder, 229, 7, 216, 424}, {Ids::PictureBox, 451, 7, 212, 400},
    {Ids::BtnTest, 451, 414, 50, 14},       {Ids::Ok, 559, 414, 50, 14},
    {Ids::Cancel, 613, 414, 50, 14},
};

struct BitmapButtonEntry
{
    int id;
    const char* text;
    const char* icon;
    unsigned toolTip; // message number
    int key;          // the trees' key that does the same, 0 for none
};

constexpr BitmapButtonEntry BitmapButtons[] = {
    {Ids::BtnAddGroup, "AG", "IDI_NEW_GROUP", 4880, 0},
    {Ids::BtnNewItems, "NEW", "IDI_DOCS_PLAIN_NEW", 6537, 0},
    {Ids::BtnDelete, "DEL", "IDI_DELETE", 214, Qt::Key_Delete},
    {Ids::BtnUp, "Up", "IDI_PICKER_UP", 70050, 0},
    {Ids::BtnDown, "Down", "IDI_PICKER_DOWN", 70051, 0},
    {Ids::BtnSetDefault, "*", "IDI_STAR", 8803, 0},
    {Ids::BtnSort, "SORT", "IDI_SORT_ASC", 70052, 0},
    {Ids::BtnImport, "IMP", "IDI_FILE_TO_CATALOG", 8530, 0},
    {Ids::BtnExport, "EXP", "IDI_CATALOG_TO_FILE", 8531, 0},
    {Ids::BtnNew, "NEW", "IDI_DOC_PLAIN_NEW", 6535, Qt::Key_Insert},
    {Ids::BtnInfo, "Info", "IDI_INFO", 70053, 0},
};

// "Delete the selected entry (Del)": a button's tip names the key that does the same.
QString ToolTipText(const BitmapButtonEntry& entry)
{
    const CModuleConfiguration* configuration = CModuleConfiguration::Instance();
    const QString text = configuration->GetMsg(entry.toolTip);
    if (!entry.key)
        return text;
    return configuration->GetMsg(70054).arg(
        text, QKeySequence(entry.key).toString(QKeySequence::NativeText));
}

// The trees' image list, by index.
constexpr const char* TreeIconNames[Editor::TreeImageCount] = {
    "IDI_INDEX",      "IDI_ADD_GROUP", "IDI_DELETE_GROUP", "IDI_NEW_GROUP", "IDI_BOX_CLOSED",
    "IDI_BOX_OPEN",   "IDI_DOC_PLAIN", "IDI_DISKDATA",     "IDI_DWG",       "IDI_DOC_STARRED"};

template <typename W> W* Identified(W* widget, int id)
{
    setControlId(widget, id);
    return widget;
}

} // namespace

void CCatalogEditorDlg::CreateControls()
{
    setWindowTitle(QStringLiteral("Catalog editor"));
    setSizeGripEnabled(true);

    m_catalogCombo = Identified(new QComboBox(this), Ids::CatalogCombo);
    Identified(new QLabel(QStringLiteral("Katalog - crtež"), this), Ids::DrawingCaption);
    m_drawingTree = Identified(new CatalogTreeWidget(this), Ids::DrawingTree);
    m_buttons[Ids::BtnAddToApp] =
        Identified(new QPushButton(QStringLiteral("Ad to app "), this), Ids::BtnAddToApp);
    Identified(new QLabel(this), Ids::Splitter);
    m_catalogTree = Identified(new CatalogTreeWidget(this), Ids::CatalogTree);
    for (const BitmapButtonEntry& entry : BitmapButtons)
        m_buttons[entry.id] =
            Identified(new CZEVBitmapButton(QString::fromLatin1(entry.text), this), entry.id);

    auto* separator = Identified(new QFrame(this), Ids::Separator);
    separator->setFrameShape(QFrame::VLine);
    separator->setFrameShadow(QFrame::Sunken);
    auto* templateBox = Identified(
        new QGroupBox(QStringLiteral("Dostupni predlosci / tipovi"), this), Ids::TemplateGroupBox);
    templateBox->lower();
    m_templateCombo = Identified(new QComboBox(this), Ids::TemplateCombo);
    Identified(new QLabel(this), Ids::GridPlaceholder);
    m_pictureBox = Identified(new CPictureBox(this), Ids::PictureBox);

    auto* test = Identified(new QPushButton(QStringLiteral("Test"), this), Ids::BtnTest);
    test->setEnabled(false);
    test->setVisible(false);
    m_buttons[Ids::BtnTest] = test;
    auto* ok = Identified(new QPushButton(QStringLiteral("OK"), this), Ids::Ok);
    ok->setDefault(true);
    m_buttons[Ids::Ok] = ok;
    m_buttons[Ids::Cancel] =
        Identified(new QPushButton(QStringLiteral("Cancel"), this), Ids::Cancel);

    CreateLoadNotice();
    m_drawingTree->setImageList(&m_images);
    m_catalogTree->setImageList(&m_images);
    ConnectControls();
}

void CCatalogEditorDlg::PlaceControls()
{
    resize(MinimumWidth, MinimumHeight);
    setMinimumSize(MinimumWidth, MinimumHeight);
    PlaceTemplateControls(this, TemplatePlacements);
    // A combo box keeps its own height; the anchors move only the extent of its list.
    for (QComboBox* combo : {m_catalogCombo, m_templateCombo})
        combo->setMaximumHeight(combo->height());
}

void CCatalogEditorDlg::SetTabOrder()
{
    // Down the left column, then the grid and the closing buttons; the grid is made at
    // start-up and would otherwise come last of all.
    auto control = [this](int id) { return findControlById(this, id); };
    Utility::SetTabOrder({control(Ids::CatalogCombo), control(Ids::DrawingTree),
                          control(Ids::BtnAddToApp), control(Ids::FilterEdit),
                          control(Ids::CatalogTree),
                          control(Ids::BtnAddGroup), control(Ids::BtnNewItems),
                          control(Ids::BtnDelete), control(Ids::BtnUp), control(Ids::BtnDown),
                          control(Ids::BtnSetDefault), control(Ids::BtnSort),
                          control(Ids::BtnImport), control(Ids::BtnExport),
                          control(Ids::TemplateCombo), control(Ids::BtnNew),
                          control(Ids::BtnInfo), control(Ids::Grid), control(Ids::Ok),
                          control(Ids::Cancel)});
}

void CCatalogEditorDlg::CreateSplitter()
{
    QWidget* placeholder = findControlById(this, Ids::Splitter);
    if (!placeholder || m_splitter)
        return;
    m_splitter = new CSplitterControl(this);
    m_splitter->Create(CSplitterControl::kStyleVisible, placeholder->geometry(), this,
                       Ids::Splitter);
    delete placeholder;
    m_splitter->SetType(CSplitterControl::SplitterHorizontal);
    // Twenty pixels either side of where the bar starts, in the dialog's coordinates.
    const int centre = m_splitter->geometry().center().y();
    m_splitter->SetRange(centre - 20, centre + 20);
    m_splitterTop = m_splitter->y();
    connect(m_splitter, &CSplitterControl::splitterMoved, this,
            [this](int, int delta) { OnSplitterMoved(delta); });
}

void CCatalogEditorDlg::OnSplitterMoved(int delta)
{
    CSplitterControl::ChangeHeight(m_drawingTree, delta, CSplitterControl::BottomEdge);
    CSplitterControl::ChangeHeight(m_catalogTree, -delta, CSplitterControl::TopEdge);
    CSplitterControl::ChangePos(Button(Ids::BtnAddToApp), 0, delta);
    CSplitterControl::ChangePos(m_filterEdit, 0, delta);
    m_splitterTop = m_splitter->y();
    update();
}

void CCatalogEditorDlg::resizeEvent(QResizeEvent* event)
{
    QDialog::resizeEvent(event);
    // The anchors have already placed the controls for the new size.
    KeepSplitterRangeWithBar();
    PlaceLoadNotice();
}

// The range stays twenty pixels either side of where the layout puts the bar: left where it
// was, a bar the anchors moved down on a taller dialog would jump back up at the next drag.
void CCatalogEditorDlg::KeepSplitterRangeWithBar()
{
    if (!m_splitter)
        return;
    const int shift = m_splitter->y() - m_splitterTop;
    if (shift == 0)
        return;
    m_splitter->SetRange(m_splitter->minimum() + shift, m_splitter->maximum() + shift);
    m_splitterTop = m_splitter->y();
}

void CCatalogEditorDlg::SetUpResizing()
{
    if (m_anchors)
        return;
    // The anchors measure growth from the size the controls were placed for; a size the
    // caller set in between is applied again afterwards.
    const QSize requested = size();
    resize(MinimumWidth, MinimumHeight);
    m_anchors = new CResizeAnchors(this);
    m_anchors->Init();
    struct Rule
    {
        std::initializer_list<int> ids;
        double left, top, right, bottom;
    };
    const Rule rules[] = {
        {{Ids::BtnAddToApp}, 0, 0.5, 0.333, 0.5},
        {{Ids::Grid}, 0.333, 0, 0.666, 1},
        {{Ids::DrawingTree}, 0, 0, 0.333, 0.5},
        {{Ids::CatalogTree}, 0, 0.5, 0.333, 1},
        {{Ids::Splitter, Ids::FilterEdit}, 0, 0.5, 0.333, 0.5},
        {{Ids::PictureBox}, 0.666, 0, 1, 1},
        {{Ids::CatalogCombo}, 0, 0, 0.333, 1},
        {{Ids::Ok, Ids::Cancel}, 1, 1, 1, 1},
        {{Ids::BtnAddGroup, Ids::BtnNewItems, Ids::BtnDelete, Ids::BtnUp, Ids::BtnDown,
          Ids::BtnSetDefault, Ids::Separator, Ids::BtnSort, Ids::BtnImport, Ids::BtnExport},
         0, 1, 0, 1},
        {{Ids::TemplateGroupBox, Ids::TemplateCombo}, 0, 1, 0.333, 1},
        {{Ids::BtnNew, Ids::BtnInfo}, 0.333, 1, 0.333, 1},
    };
    for (const Rule& rule : rules)
        for (int id : rule.ids)
            m_anchors->setResize(id, rule.left, rule.top, rule.right, rule.bottom);
    resize(requested);
    m_anchors->apply();
    KeepSplitterRangeWithBar();
}

void CCatalogEditorDlg::LoadIcons()
{
    const CModuleConfiguration* configuration = CModuleConfiguration::Instance();
    for (int i = 0; i < Editor::TreeImageCount; ++i)
        m_images[size_t(i)] = configuration->GetIcon(QString::fromLatin1(TreeIconNames[i]));
    for (const BitmapButtonEntry& entry : BitmapButtons)
        static_cast<CZEVBitmapButton*>(Button(entry.id))
            ->SetIcon(configuration->GetIcon(QString::fromLatin1(entry.icon)));
    QAbstractButton* addToApp = Button(Ids::BtnAddToApp);
    addToApp->setIcon(configuration->GetIcon(QStringLiteral("IDI_DATA_ADDD")));
    addToApp->setIconSize(QSize(24, 24));
    // Items are dragged within the catalog tree only.
    const QPixmap drag = configuration->GetBitmap(QStringLiteral("IDB_DRAG"));
    m_catalogTree->setItemDragEnabled(true, drag.isNull() ? QCursor(Qt::ArrowCursor)
                                                          : QCursor(drag, 10, 14));
}

void CCatalogEditorDlg::LoadTexts()
{
    const CModuleConfiguration* configuration = CModuleConfiguration::Instance();
    setWindowTitle(configuration->GetMsg(6534));
    for (const BitmapButtonEntry& entry : BitmapButtons)
        static_cast<CZEVBitmapButton*>(Button(entry.id))->SetToolTip(ToolTipText(entry));
    if (auto* caption = qobject_cast<QLabel*>(findControlById(this, Ids::DrawingCaption)))
        caption->setText(configuration->GetMsg(7284));
    if (auto* box = qobject_cast<QGroupBox*>(findControlById(this, Ids::TemplateGroupBox)))
        box->setTitle(configuration->GetMsg(7661));
    Button(Ids::BtnAddToApp)->setText(configuration->GetMsg(7283));
    Button(Ids::Ok)->setText(configuration->GetMsg(60));
    Button(Ids::Cancel)->setText(configuration->GetMsg(67));
}
