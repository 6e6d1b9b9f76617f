#pragma once

#include "catalog/PropertiesEx.h"

#include <QTreeView>
#include <QWidget>
#include <boost/shared_ptr.hpp>

class PropertyGridDelegate;
class PropertyGridModel;
class QAction;
class QToolBar;

// The tree of the property grid. Editing a row always edits its value, whichever column was
// clicked or is current: F2, Enter, a double click or typing open the editor, Escape cancels
// it. A yes/no value has no editor: Space, F2, Enter or a click on its box toggles it (and
// makes its row the current one). Enter on a category folds or unfolds it.
class PropertyGridView : public QTreeView
{
    Q_OBJECT
public:
    explicit PropertyGridView(QWidget* parent = nullptr);

    // Closes an open editor without writing its text.
    void cancelEditing();
    // Lays the columns out for the rows shown: categories across both, captions fitted.
    void fitToRows();
    // True while an in-place editor is open.
    bool isEditing() const { return state() == QAbstractItemView::EditingState; }
    // Drawn in place of the rows while there are none (empty: nothing drawn).
    void setHint(const QString& hint);
    QString hint() const { return m_hint; }

protected:
    bool event(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;
    void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    PropertyGridModel* gridModel() const;
    bool toggleBoolean(const QModelIndex& valueIndex);

    QString m_hint;
};

// The property grid widget: an optional tool bar (categorized or alphabetical order) above
// the tree. It reports edits and selection changes as signals.
class PropertyGridWidget : public QWidget
{
    Q_OBJECT
public:
    explicit PropertyGridWidget(QWidget* parent = nullptr);
    ~PropertyGridWidget() override;

    // Shows `properties` (null: nothing, and a hint to select something instead).
    // `expandAll` opens every category; `keepSelection` selects the row with the tag
    // selected before, when there is one.
    void setProperties(boost::shared_ptr<ZEVGis::Data::CPropertiesEx> properties, bool expandAll,
                       bool keepSelection);
    void clear();
    void setReadOnly(bool readOnly);
    bool isReadOnly() const;
    void setPrecision(int digits);
    void setToolBarVisible(bool visible);
    void setCategorized(bool categorized);
    bool isCategorized() const;

    // The property of the current row, null for a category row or no row.
    ZEVGis::Data::CPropertyEx* currentProperty() const;

    PropertyGridView* view() const { return m_view; }
    PropertyGridModel* model() const { return m_model; }
    QToolBar* toolBar() const { return m_toolBar; }

signals:
    void propertyUpdated(ZEVGis::Data::CPropertyEx* property);
    void propertySelected(ZEVGis::Data::CPropertyEx* property);

private:
    void onCurrentChanged(const QModelIndex& current);
    void notifySelection(ZEVGis::Data::CPropertyEx* property);

    PropertyGridModel* m_model = nullptr;
    PropertyGridDelegate* m_delegate = nullptr;
    PropertyGridView* m_view = nullptr;
    QToolBar* m_toolBar = nullptr;
    QAction* m_categorizedAction = nullptr;
    QAction* m_alphabeticalAction = nullptr;
    ZEVGis::Data::CPropertyEx* m_notified = nullptr;
};
