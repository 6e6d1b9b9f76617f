#pragma once

#include <QPointer>
#include <QStyledItemDelegate>

// The in-place editors of the property grid's value column: a line edit for text, integers
// and doubles (with a validator for the numbers), a drop-down list for choices. Yes/no values
// are check boxes and need no editor.
class PropertyGridDelegate : public QStyledItemDelegate
{
    Q_OBJECT
public:
    explicit PropertyGridDelegate(QObject* parent = nullptr);

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model,
                      const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

    void destroyEditor(QWidget* editor, const QModelIndex& index) const override;

    // The editor open now, if any.
    QWidget* currentEditor() const { return m_editor; }

protected:
    bool eventFilter(QObject* object, QEvent* event) override;

private:
    mutable QPointer<QWidget> m_editor;
};
