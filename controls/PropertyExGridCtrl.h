#pragma once

#include "catalog/PropertiesEx.h"

#include <QPointer>
#include <QWidget>
#include <boost/shared_ptr.hpp>

namespace ZEVGis::Data
{
class CPropertyEx;
}

// Called by the grid after a property's value was changed and accepted.
class CCallbackItemUpdated
{
public:
    virtual ~CCallbackItemUpdated() = default;
    virtual void OnItemUpdated(ZEVGis::Data::CPropertyEx* property) = 0;
};

// Called by the grid when the selected property row changes (null: no row).
class CCallbackItemSelChanged
{
public:
    virtual ~CCallbackItemSelChanged() = default;
    virtual void OnItemSelChanged(ZEVGis::Data::CPropertyEx* property) = 0;
};

class PropertyGridWidget;

// Property grid: one folding section per category, one row per property, an editor per
// value type. Edits are written into the shown CPropertyEx objects themselves.
class CPropertyExGridCtrl
{
public:
    CPropertyExGridCtrl();
    virtual ~CPropertyExGridCtrl();

    // Creates the grid in the place of the child of `parent` whose controlId is
    // `placeholderId` (taking its geometry; the placeholder is hidden), with controlId
    // `newId`. Non-zero on success.
    int CreatePropertyGrid(QWidget* parent, unsigned placeholderId, unsigned newId);
    // Shows `properties`; `expandAll` non-zero opens every category. `keepSelection` non-zero
    // keeps the selected row's tag when it is shown again.
    void SetDataToShow(boost::shared_ptr<ZEVGis::Data::CPropertiesEx> properties, int expandAll,
                       int keepSelection);
    void SetReadOnly(int readOnly);
    int IsReadOnly() const;
    void SetDoubleValuePrecision(int digits);
    void ClearGrid();
    void ShowToolBar(int show);
    void SetCallbackChange(CCallbackItemSelChanged* callback);
    void SetCallbackUpdate(CCallbackItemUpdated* callback);

    // The grid's widget (null before CreatePropertyGrid).
    QWidget* widget() const;

    // The grid widget itself (null before CreatePropertyGrid), for tests and layout.
    PropertyGridWidget* gridWidget() const { return m_widget; }

private:
    void onUpdated(ZEVGis::Data::CPropertyEx* property);
    void onSelected(ZEVGis::Data::CPropertyEx* property);

    // Owned by its parent window; deleted with this object, which it calls back.
    QPointer<PropertyGridWidget> m_widget;
    CCallbackItemSelChanged* m_change = nullptr;
    CCallbackItemUpdated* m_update = nullptr;
    int m_precision = 6;
    int m_readOnly = 0;
    bool m_toolBarShown = false;
};
