#include "controls/PropertyExGridCtrl.h"

#include "controls/ControlId.h"
#include "controls/PropertyGridWidget.h"

#include <QLayout>

CPropertyExGridCtrl::CPropertyExGridCtrl() = default;

CPropertyExGridCtrl::~CPropertyExGridCtrl()
{
    delete m_widget.data();
}

int CPropertyExGridCtrl::CreatePropertyGrid(QWidget* parent, unsigned placeholderId, unsigned newId)
{
    QWidget* placeholder = findControlById(parent, int(placeholderId));
    if (!placeholder || !placeholder->parentWidget())
        return 0;
    delete m_widget.data();

    QWidget* host = placeholder->parentWidget();
    auto* grid = new PropertyGridWidget(host);
    m_widget = grid;
    setControlId(grid, int(newId));
    grid->setGeometry(placeholder->geometry());
    if (QLayout* layout = host->layout())
        delete layout->replaceWidget(placeholder, grid);
    grid->stackUnder(placeholder);
    placeholder->hide();
    grid->show();

    grid->setPrecision(m_precision);
    grid->setReadOnly(m_readOnly != 0);
    grid->setToolBarVisible(m_toolBarShown);
    QObject::connect(grid, &PropertyGridWidget::propertyUpdated, grid,
                     [this](ZEVGis::Data::CPropertyEx* property) { onUpdated(property); });
    QObject::connect(grid, &PropertyGridWidget::propertySelected, grid,
                     [this](ZEVGis::Data::CPropertyEx* property) { onSelected(property); });
    return 1;
}

void CPropertyExGridCtrl::SetDataToShow(boost::shared_ptr<ZEVGis::Data::CPropertiesEx> properties,
                                        int expandAll, int keepSelection)
{
    if (m_widget)
        m_widget->setProperties(std::move(properties), expandAll != 0, keepSelection != 0);
}

void CPropertyExGridCtrl::SetReadOnly(int readOnly)
{
    m_readOnly = readOnly != 0;
    if (m_widget)
        m_widget->setReadOnly(m_readOnly != 0);
}

int CPropertyExGridCtrl::IsReadOnly() const
{
    return m_readOnly;
}

void CPropertyExGridCtrl::SetDoubleValuePrecision(int digits)
{
    m_precision = digits;
    if (m_widget)
        m_widget->setPrecision(digits);
}

void CPropertyExGridCtrl::ClearGrid()
{
    if (m_widget)
        m_widget->clear();
}

void CPropertyExGridCtrl::ShowToolBar(int show)
{
    m_toolBarShown = show != 0;
    if (m_widget)
        m_widget->setToolBarVisible(m_toolBarShown);
}

void CPropertyExGridCtrl::SetCallbackChange(CCallbackItemSelChanged* callback)
{
    m_change = callback;
}

void CPropertyExGridCtrl::SetCallbackUpdate(CCallbackItemUpdated* callback)
{
    m_update = callback;
}

QWidget* CPropertyExGridCtrl::widget() const
{
    return m_widget;
}

void CPropertyExGridCtrl::onUpdated(ZEVGis::Data::CPropertyEx* property)
{
    if (m_update)
        m_update->OnItemUpdated(property);
}

void CPropertyExGridCtrl::onSelected(ZEVGis::Data::CPropertyEx* property)
{
    if (m_change)
        m_change->OnItemSelChanged(property);
}
