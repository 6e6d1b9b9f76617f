#include "controls/PropertyGridModel.h"

#include "controls/PropertyValueText.h"

#include <QFont>
#include <QGuiApplication>
#include <QPalette>
#include <algorithm>

using ZEVGis::Data::CDataBox;
using ZEVGis::Data::CPropertyEx;
using ZEVGis::Data::DataType;

PropertyGridModel::PropertyGridModel(QObject* parent) : QAbstractItemModel(parent) {}

PropertyGridModel::~PropertyGridModel() = default;

void PropertyGridModel::setProperties(boost::shared_ptr<ZEVGis::Data::CPropertiesEx> properties)
{
    beginResetModel();
    m_properties = std::move(properties);
    rebuild();
    endResetModel();
}

void PropertyGridModel::clear()
{
    setProperties({});
}

void PropertyGridModel::setCategorized(bool categorized)
{
    if (m_categorized == categorized)
        return;
    beginResetModel();
    m_categorized = categorized;
    rebuild();
    endResetModel();
}

void PropertyGridModel::rebuild()
{
    m_sections.clear();
    m_flat.clear();
    if (!m_properties)
        return;
    for (const auto& category : m_properties->categories())
    {
        if (!category)
            continue;
        Section section{category->GetName(), {}};
        for (const PropertyPtr& property : category->GetPropertyExVector())
            if (property)
                section.properties.push_back(property);
        if (m_categorized)
            m_sections.push_back(std::move(section));
        else
            m_flat.insert(m_flat.end(), section.properties.begin(), section.properties.end());
    }
    if (!m_categorized)
        std::stable_sort(m_flat.begin(), m_flat.end(),
                         [](const PropertyPtr& a, const PropertyPtr& b) {
                             return QString::compare(a->GetCaption(), b->GetCaption(),
                                                     Qt::CaseInsensitive) < 0;
                         });
}

void PropertyGridModel::setPrecision(int digits)
{
    digits = clampDoublePrecision(digits);
    if (m_precision == digits)
        return;
    m_precision = digits;
    valuesChanged();
}

void PropertyGridModel::setReadOnly(bool readOnly)
{
    if (m_readOnly == readOnly)
        return;
    m_readOnly = readOnly;
    valuesChanged();
}

// Every value cell may look different now (precision, read-only colour and flags).
void PropertyGridModel::valuesChanged()
{
    const int top = rowCount();
    if (top == 0)
        return;
    emit dataChanged(index(0, ValueColumn), index(top - 1, ValueColumn));
    for (int row = 0; row < top; ++row)
    {
        const QModelIndex parent = index(row, 0);
        const int children = rowCount(parent);
        if (children > 0)
            emit dataChanged(index(0, CaptionColumn, parent),
                             index(children - 1, ValueColumn, parent));
    }
}

PropertyGridModel::PropertyPtr PropertyGridModel::propertyPtrAt(const QModelIndex& index) const
{
    if (!index.isValid() || index.model() != this)
        return {};
    const quintptr id = index.internalId();
    if (id == 0)
    {
        if (m_categorized || index.row() >= int(m_flat.size()))
            return {};
        return m_flat[size_t(index.row())];
    }
    const size_t section = size_t(id - 1);
    if (section >= m_sections.size() || index.row() >= int(m_sections[section].properties.size()))
        return {};
    return m_sections[section].properties[size_t(index.row())];
}

CPropertyEx* PropertyGridModel::propertyAt(const QModelIndex& index) const
{
    return propertyPtrAt(index).get();
}

QModelIndex PropertyGridModel::indexOfTag(const QString& tag) const
{
    if (!m_categorized)
    {
        for (size_t row = 0; row < m_flat.size(); ++row)
            if (m_flat[row]->GetTag() == tag)
                return index(int(row), 0);
        return {};
    }
    for (size_t s = 0; s < m_sections.size(); ++s)
    {
        const auto& properties = m_sections[s].properties;
        for (size_t row = 0; row < properties.size(); ++row)
            if (properties[row]->GetTag() == tag)
                return createIndex(int(row), 0, quintptr(s + 1));
    }
    return {};
}

bool PropertyGridModel::isWritable(const QModelIndex& index) const
{
    const CPropertyEx* property = propertyAt(index);
    return property && !m_readOnly && !property->IsReadOnly();
}

QModelIndex PropertyGridModel::index(int row, int column, const QModelIndex& parent) const
{
    if (row < 0 || column < 0 || column > ValueColumn)
        return {};
    if (!parent.isValid())
    {
        const size_t count = m_categorized ? m_sections.size() : m_flat.size();
        return size_t(row) < count ? createIndex(row, column, quintptr(0)) : QModelIndex();
    }
    // Only category rows have children.
    if (!m_categorized || parent.internalId() != 0 || parent.column() != 0 ||
        size_t(parent.row()) >= m_sections.size())
        return {};
    if (size_t(row) >= m_sections[size_t(parent.row())].properties.size())
        return {};
    return createIndex(row, column, quintptr(parent.row() + 1));
}

QModelIndex PropertyGridModel::parent(const QModelIndex& child) const
{
    if (!child.isValid() || child.internalId() == 0)
        return {};
    return createIndex(int(child.internalId() - 1), 0, quintptr(0));
}

int PropertyGridModel::rowCount(const QModelIndex& parent) const
{
    if (!parent.isValid())
        return int(m_categorized ? m_sections.size() : m_flat.size());
    if (!m_categorized || parent.internalId() != 0 || parent.column() != 0 ||
        size_t(parent.row()) >= m_sections.size())
        return 0;
    return int(m_sections[size_t(parent.row())].properties.size());
}

int PropertyGridModel::columnCount(const QModelIndex&) const
{
    return 2;
}

QVariant PropertyGridModel::valueData(const CPropertyEx& property, int role) const
{
    const CDataBox value = property.GetValue();
    const bool isBool = value.GetType() == DataType::Boolean;
    switch (role)
    {
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
        return isBool ? QVariant() : QVariant(formatPropertyValue(value, m_precision));
    case Qt::EditRole:
        return isBool ? QVariant(value.ToBool())
                      : QVariant(formatPropertyValue(value, m_precision));
    case Qt::CheckStateRole:
        return isBool ? QVariant(value.ToBool() ? Qt::Checked : Qt::Unchecked) : QVariant();
    case ChoicesRole:
        return property.GetChoices();
    default:
        return {};
    }
}

QVariant PropertyGridModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.model() != this)
        return {};
    const CPropertyEx* property = propertyAt(index);
    if (!property)
    {
        if (!m_categorized || index.internalId() != 0 || size_t(index.row()) >= m_sections.size())
            return {};
        if (role == IsCategoryRole)
            return true;
        if (index.column() == CaptionColumn && (role == Qt::DisplayRole || role == Qt::ToolTipRole))
            return m_sections[size_t(index.row())].name;
        if (role == Qt::FontRole)
        {
            QFont bold;
            bold.setBold(true);
            return bold;
        }
        return {};
    }
    switch (role)
    {
    case IsCategoryRole:
        return false;
    case TagRole:
        return property->GetTag();
    case ValueTypeRole:
        return int(property->GetValue().GetType());
    case Qt::ForegroundRole:
        if (!isWritable(index))
            return QGuiApplication::palette().brush(QPalette::Disabled, QPalette::Text);
        return {};
    default:
        break;
    }
    if (index.column() == CaptionColumn)
        return (role == Qt::DisplayRole || role == Qt::ToolTipRole)
                   ? QVariant(property->GetCaption())
                   : QVariant();
    return valueData(*property, role);
}

Qt::ItemFlags PropertyGridModel::flags(const QModelIndex& index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (index.column() != ValueColumn || !isWritable(index))
        return flags;
    if (propertyAt(index)->GetValue().GetType() == DataType::Boolean)
        return flags | Qt::ItemIsUserCheckable;
    return flags | Qt::ItemIsEditable;
}

bool PropertyGridModel::setData(const QModelIndex& index, const QVariant& value, int role)
{
    if (index.column() != ValueColumn || !isWritable(index))
        return false;
    // Held for the notification: a receiver may replace what the grid shows.
    const PropertyPtr property = propertyPtrAt(index);
    const CDataBox old = property->GetValue();
    const DataType type = old.GetType();
    CDataBox updated;
    if (type == DataType::Boolean &&
        (role == Qt::CheckStateRole || value.typeId() == QMetaType::Bool))
    {
        const bool on = role == Qt::CheckStateRole ? value.toInt() == Qt::Checked : value.toBool();
        updated = CDataBox::fromBool(on);
    }
    else if (role == Qt::EditRole)
    {
        const QString text = value.toString();
        // Text given back as it was shown means no change: a double shown rounded keeps
        // its full value.
        if (text == formatPropertyValue(old, m_precision))
            return true;
        if (!parsePropertyValue(type, text, property->GetChoices(), updated))
            return false;
    }
    else
    {
        return false;
    }
    if (updated == old)
        return true;
    property->SetValue(updated);
    emit dataChanged(index.siblingAtColumn(CaptionColumn), index.siblingAtColumn(ValueColumn));
    emit propertyChanged(property.get());
    return true;
}

QVariant PropertyGridModel::headerData(int, Qt::Orientation, int) const
{
    return {};
}
