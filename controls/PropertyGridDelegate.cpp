#include "controls/PropertyGridDelegate.h"

#include "catalog/DataBox.h"
#include "controls/PropertyGridModel.h"

#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QRegularExpressionValidator>

using ZEVGis::Data::DataType;

PropertyGridDelegate::PropertyGridDelegate(QObject* parent) : QStyledItemDelegate(parent) {}

QWidget* PropertyGridDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem&,
                                            const QModelIndex& index) const
{
    if (index.column() != PropertyGridModel::ValueColumn)
        return nullptr;
    const QVariant typeData = index.data(PropertyGridModel::ValueTypeRole);
    if (!typeData.isValid())
        return nullptr;
    const auto type = DataType(typeData.toInt());
    QWidget* editor = nullptr;
    if (type == DataType::Boolean)
        return nullptr;
    if (type == DataType::Choice &&
        !index.data(PropertyGridModel::ChoicesRole).toStringList().isEmpty())
    {
        auto* combo = new QComboBox(parent);
        combo->setFrame(false);
        editor = combo;
    }
    else
    {
        auto* line = new QLineEdit(parent);
        line->setFrame(false);
        // The validators only keep out characters that can never make a number; the model
        // decides whether the finished text is one (range, format).
        if (type == DataType::Integer)
            line->setValidator(new QRegularExpressionValidator(
                QRegularExpression(QStringLiteral("\\s*[+-]?[0-9]*\\s*")), line));
        else if (type == DataType::Double)
            line->setValidator(new QRegularExpressionValidator(
                QRegularExpression(
                    QStringLiteral("\\s*[+-]?[0-9]*[.,]?[0-9]*([eE][+-]?[0-9]*)?\\s*")),
                line));
        editor = line;
    }
    editor->setAutoFillBackground(true);
    m_editor = editor;
    return editor;
}

void PropertyGridDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const
{
    const QString text = index.data(Qt::EditRole).toString();
    if (auto* combo = qobject_cast<QComboBox*>(editor))
    {
        combo->clear();
        combo->addItems(index.data(PropertyGridModel::ChoicesRole).toStringList());
        int current = combo->findText(text, Qt::MatchExactly);
        if (current < 0)
        {
            // A value outside the list stays selectable, so that leaving the editor keeps it.
            combo->insertItem(0, text);
            current = 0;
        }
        combo->setCurrentIndex(current);
    }
    else if (auto* line = qobject_cast<QLineEdit*>(editor))
    {
        line->setText(text);
        line->selectAll();
    }
}

void PropertyGridDelegate::setModelData(QWidget* editor, QAbstractItemModel* model,
                                        const QModelIndex& index) const
{
    if (auto* combo = qobject_cast<QComboBox*>(editor))
        model->setData(index, combo->currentText(), Qt::EditRole);
    else if (auto* line = qobject_cast<QLineEdit*>(editor))
        model->setData(index, line->text(), Qt::EditRole);
}

QSize PropertyGridDelegate::sizeHint(const QStyleOptionViewItem& option,
                                     const QModelIndex& index) const
{
    QSize size = QStyledItemDelegate::sizeHint(option, index);
    size.setHeight(std::max(size.height() + 4, 22));
    return size;
}

void PropertyGridDelegate::destroyEditor(QWidget* editor, const QModelIndex& index) const
{
    if (m_editor == editor)
        m_editor = nullptr;
    QStyledItemDelegate::destroyEditor(editor, index);
}

bool PropertyGridDelegate::eventFilter(QObject* object, QEvent* event)
{
    // Enter commits at once rather than from the event queue: the owner hears of the change
    // before the key press returns, and nothing is left pending when the grid is refilled.
    auto* editor = qobject_cast<QWidget*>(object);
    if (editor && editor == m_editor && event->type() == QEvent::KeyPress)
    {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter)
        {
            emit commitData(editor);
            emit closeEditor(editor, QAbstractItemDelegate::SubmitModelCache);
            return true;
        }
    }
    return QStyledItemDelegate::eventFilter(object, event);
}
