#include "controls/PropertyGridWidget.h"

#include "catalog/DataBox.h"
#include "catalog/ModuleConfiguration.h"
#include "controls/PropertyGridDelegate.h"
#include "controls/PropertyGridModel.h"

#include <QAction>
#include <QActionGroup>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QToolBar>
#include <QVBoxLayout>

using ZEVGis::Data::CPropertyEx;
using ZEVGis::Data::DataType;

namespace
{
constexpr int FocusFrameWidth = 2;
}

// ---------------------------------------------------------------------------------------
// PropertyGridView

PropertyGridView::PropertyGridView(QWidget* parent) : QTreeView(parent)
{
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setAllColumnsShowFocus(true);
    setRootIsDecorated(true);
    setUniformRowHeights(true);
    setIndentation(14);
    setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::SelectedClicked |
                    QAbstractItemView::EditKeyPressed | QAbstractItemView::AnyKeyPressed);
    header()->hide();
    header()->setStretchLastSection(true);
}

namespace
{
// What the grid says while it shows nothing.
QString nothingSelectedHint()
{
    return ZEVGis::CModuleConfiguration::Instance()->GetMsg(70000);
}
} // namespace

void PropertyGridView::setHint(const QString& hint)
{
    if (m_hint == hint)
        return;
    m_hint = hint;
    viewport()->update();
}

void PropertyGridView::paintEvent(QPaintEvent* event)
{
    QTreeView::paintEvent(event);
    if (m_hint.isEmpty() || (model() && model()->rowCount() > 0))
        return;
    QPainter painter(viewport());
    painter.setPen(palette().color(QPalette::PlaceholderText));
    const int margin = fontMetrics().height();
    painter.drawText(viewport()->rect().adjusted(margin, margin, -margin, -margin),
                     Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, m_hint);
}

PropertyGridModel* PropertyGridView::gridModel() const
{
    return qobject_cast<PropertyGridModel*>(model());
}

void PropertyGridView::cancelEditing()
{
    if (state() != QAbstractItemView::EditingState)
        return;
    if (auto* delegate = qobject_cast<PropertyGridDelegate*>(itemDelegate()))
        if (QWidget* editor = delegate->currentEditor())
            closeEditor(editor, QAbstractItemDelegate::RevertModelCache);
}

// An owner that refilled the grid while an edit was being written has already taken the
// editor away; there is nothing left to close then.
void PropertyGridView::closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint)
{
    auto* delegate = qobject_cast<PropertyGridDelegate*>(itemDelegate());
    if (delegate && delegate->currentEditor() != editor)
        return;
    QTreeView::closeEditor(editor, hint);
}

bool PropertyGridView::toggleBoolean(const QModelIndex& valueIndex)
{
    if (!(model()->flags(valueIndex) & Qt::ItemIsUserCheckable))
        return false;
    const bool on = valueIndex.data(Qt::CheckStateRole).toInt() == Qt::Checked;
    return model()->setData(valueIndex, on ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
}

bool PropertyGridView::edit(const QModelIndex& index, EditTrigger trigger, QEvent* event)
{
    PropertyGridModel* grid = gridModel();
    if (!grid || !grid->propertyAt(index))
        return QTreeView::edit(index, trigger, event);
    const QModelIndex value = index.siblingAtColumn(PropertyGridModel::ValueColumn);
    const bool isBool =
        value.data(PropertyGridModel::ValueTypeRole).toInt() == int(DataType::Boolean);
    // Keyboard edits and a double click on the caption toggle a yes/no value; clicks on its
    // box and Space reach the delegate below.
    if (isBool &&
        (trigger == EditKeyPressed ||
         (trigger == DoubleClicked && index.column() == PropertyGridModel::CaptionColumn)))
        return toggleBoolean(value);
    return QTreeView::edit(value, trigger, event);
}

void PropertyGridView::keyPressEvent(QKeyEvent* event)
{
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (enter && state() != QAbstractItemView::EditingState && currentIndex().isValid())
    {
        const QModelIndex current = currentIndex();
        if (gridModel() && gridModel()->propertyAt(current))
        {
            edit(current, EditKeyPressed, event);
        }
        else
        {
            const QModelIndex row = current.siblingAtColumn(0);
            setExpanded(row, !isExpanded(row));
        }
        // Enter belongs to the grid, not to the dialog's default button.
        event->accept();
        return;
    }
    QTreeView::keyPressEvent(event);
}

void PropertyGridView::mousePressEvent(QMouseEvent* event)
{
    // The box takes the click for itself, which would leave the selection on another row:
    // Space and the owner's picture would then go to a property the user did not touch.
    const QModelIndex index = indexAt(event->position().toPoint());
    if (event->button() == Qt::LeftButton && index.isValid() &&
        (model()->flags(index) & Qt::ItemIsUserCheckable) && index != currentIndex())
        setCurrentIndex(index);
    QTreeView::mousePressEvent(event);
}

// The frame is drawn in the highlight colour while the grid has the focus, as the trees
// show theirs by the current row alone and a grid without one gave no sign of the keys.
bool PropertyGridView::event(QEvent* event)
{
    const bool handled = QTreeView::event(event);
    if (event->type() == QEvent::Paint && hasFocus())
    {
        QPainter painter(this);
        painter.setPen(QPen(palette().color(QPalette::Highlight), FocusFrameWidth));
        painter.setBrush(Qt::NoBrush);
        const qreal inset = FocusFrameWidth / 2.0;
        painter.drawRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset));
    }
    return handled;
}

void PropertyGridView::focusInEvent(QFocusEvent* event)
{
    QTreeView::focusInEvent(event);
    update();
}

void PropertyGridView::focusOutEvent(QFocusEvent* event)
{
    QTreeView::focusOutEvent(event);
    update();
}

void PropertyGridView::resizeEvent(QResizeEvent* event)
{
    QTreeView::resizeEvent(event);
    fitToRows();
}

// Category names run across both columns; the caption column is as wide as its longest
// caption, between a quarter and a half of the grid, so the values keep room.
void PropertyGridView::fitToRows()
{
    if (!model())
        return;
    // A top-level row is indented once (the fold marks), a property in a category twice.
    const int width = viewport()->width();
    int captions = 0;
    for (int row = 0; row < model()->rowCount(); ++row)
    {
        const QModelIndex top = model()->index(row, PropertyGridModel::CaptionColumn);
        const bool category = top.data(PropertyGridModel::IsCategoryRole).toBool();
        setFirstColumnSpanned(row, {}, category);
        if (!category)
            captions = qMax(captions, sizeHintForIndex(top).width() + indentation());
        for (int child = 0; child < model()->rowCount(top); ++child)
            captions = qMax(captions, sizeHintForIndex(model()->index(child, 0, top)).width() + 2 * indentation());
    }
    const int caption = qBound(width / 4, captions + 8, width / 2);
    header()->resizeSection(PropertyGridModel::CaptionColumn, caption);
}

// ---------------------------------------------------------------------------------------
// PropertyGridWidget

PropertyGridWidget::PropertyGridWidget(QWidget* parent) : QWidget(parent)
{
    m_model = new PropertyGridModel(this);
    m_delegate = new PropertyGridDelegate(this);
    m_view = new PropertyGridView(this);
    m_view->setModel(m_model);
    m_view->setItemDelegate(m_delegate);
    m_view->setHint(nothingSelectedHint());

    m_toolBar = new QToolBar(this);
    m_toolBar->setIconSize(QSize(16, 16));
    auto* order = new QActionGroup(this);
    m_categorizedAction =
        m_toolBar->addAction(style()->standardIcon(QStyle::SP_FileDialogDetailedView), QString());
    m_alphabeticalAction =
        m_toolBar->addAction(style()->standardIcon(QStyle::SP_FileDialogListView), QString());
    for (QAction* action : {m_categorizedAction, m_alphabeticalAction})
    {
        action->setCheckable(true);
        order->addAction(action);
    }
    m_categorizedAction->setChecked(true);
    connect(m_categorizedAction, &QAction::triggered, this, [this] { setCategorized(true); });
    connect(m_alphabeticalAction, &QAction::triggered, this, [this] { setCategorized(false); });
    m_toolBar->hide();

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_toolBar);
    layout->addWidget(m_view, 1);
    // A compound control: Tab comes to the widget, which hands the focus to the tree, and
    // goes on past its parts. Without a policy of its own the dialog cannot place it in its
    // tab order, and Tab from the last control came back to the tree instead of going round.
    setFocusPolicy(m_view->focusPolicy());
    setFocusProxy(m_view);

    connect(m_model, &PropertyGridModel::propertyChanged, this,
            &PropertyGridWidget::propertyUpdated);
    connect(m_view->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& current) { onCurrentChanged(current); });
}

PropertyGridWidget::~PropertyGridWidget() = default;

void PropertyGridWidget::setProperties(boost::shared_ptr<ZEVGis::Data::CPropertiesEx> properties,
                                       bool expandAll, bool keepSelection)
{
    const CPropertyEx* selected = currentProperty();
    const QString selectedTag = keepSelection && selected ? selected->GetTag() : QString();
    m_view->cancelEditing();
    notifySelection(nullptr);
    m_view->setHint(properties ? QString() : nothingSelectedHint());
    m_model->setProperties(std::move(properties));
    if (expandAll)
        m_view->expandAll();
    m_view->fitToRows();
    if (!selectedTag.isEmpty())
    {
        const QModelIndex row = m_model->indexOfTag(selectedTag);
        if (row.isValid())
            m_view->setCurrentIndex(row);
    }
}

void PropertyGridWidget::clear()
{
    setProperties({}, false, false);
}

void PropertyGridWidget::setReadOnly(bool readOnly)
{
    if (readOnly)
        m_view->cancelEditing();
    m_model->setReadOnly(readOnly);
}

bool PropertyGridWidget::isReadOnly() const
{
    return m_model->isReadOnly();
}

void PropertyGridWidget::setPrecision(int digits)
{
    m_model->setPrecision(digits);
}

void PropertyGridWidget::setToolBarVisible(bool visible)
{
    m_toolBar->setVisible(visible);
}

void PropertyGridWidget::setCategorized(bool categorized)
{
    (categorized ? m_categorizedAction : m_alphabeticalAction)->setChecked(true);
    if (m_model->isCategorized() == categorized)
        return;
    const CPropertyEx* selected = currentProperty();
    const QString tag = selected ? selected->GetTag() : QString();
    m_view->cancelEditing();
    m_model->setCategorized(categorized);
    m_view->expandAll();
    m_view->fitToRows();
    // The same property stays selected; the callback hears of it only if it changes.
    const QModelIndex row = tag.isEmpty() ? QModelIndex() : m_model->indexOfTag(tag);
    if (row.isValid())
        m_view->setCurrentIndex(row);
    else
        notifySelection(nullptr);
}

bool PropertyGridWidget::isCategorized() const
{
    return m_model->isCategorized();
}

CPropertyEx* PropertyGridWidget::currentProperty() const
{
    return m_model->propertyAt(m_view->currentIndex());
}

void PropertyGridWidget::onCurrentChanged(const QModelIndex& current)
{
    notifySelection(m_model->propertyAt(current));
}

void PropertyGridWidget::notifySelection(CPropertyEx* property)
{
    if (property == m_notified)
        return;
    m_notified = property;
    emit propertySelected(property);
}
