#pragma once

#include "catalog/PropertiesEx.h"

#include <QAbstractItemModel>
#include <boost/shared_ptr.hpp>
#include <vector>

// The rows of the property grid: in categorized order one folding row per category with one
// child row per property, in alphabetical order one row per property. Column 0 is the
// caption, column 1 the value. Edits are written into the shown CPropertyEx objects.
class PropertyGridModel : public QAbstractItemModel
{
    Q_OBJECT
public:
    enum Column
    {
        CaptionColumn = 0,
        ValueColumn = 1
    };
    enum Role
    {
        ChoicesRole = Qt::UserRole + 1, // QStringList: the allowed values of a choice
        ValueTypeRole,                  // int: the DataType of the value
        TagRole,                        // QString: the property's tag
        IsCategoryRole                  // bool
    };

    explicit PropertyGridModel(QObject* parent = nullptr);
    ~PropertyGridModel() override;

    void setProperties(boost::shared_ptr<ZEVGis::Data::CPropertiesEx> properties);
    boost::shared_ptr<ZEVGis::Data::CPropertiesEx> properties() const { return m_properties; }
    void clear();

    void setCategorized(bool categorized);
    bool isCategorized() const { return m_categorized; }
    void setPrecision(int digits);
    int precision() const { return m_precision; }
    void setReadOnly(bool readOnly);
    bool isReadOnly() const { return m_readOnly; }

    // The property of a row (any column), null for category rows and invalid indexes.
    ZEVGis::Data::CPropertyEx* propertyAt(const QModelIndex& index) const;
    // The first row showing the property with this tag (column 0), invalid when none.
    QModelIndex indexOfTag(const QString& tag) const;
    // Whether the value of this row can be changed now.
    bool isWritable(const QModelIndex& index) const;

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& child) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;

signals:
    // A property's value was changed and accepted.
    void propertyChanged(ZEVGis::Data::CPropertyEx* property);

private:
    using PropertyPtr = boost::shared_ptr<ZEVGis::Data::CPropertyEx>;
    struct Section
    {
        QString name;
        std::vector<PropertyPtr> properties;
    };

    void rebuild();
    PropertyPtr propertyPtrAt(const QModelIndex& index) const;
    QVariant valueData(const ZEVGis::Data::CPropertyEx& property, int role) const;
    void valuesChanged();

    boost::shared_ptr<ZEVGis::Data::CPropertiesEx> m_properties;
    // Categorized: one section per category. Alphabetical: m_flat alone.
    std::vector<Section> m_sections;
    std::vector<PropertyPtr> m_flat;
    bool m_categorized = true;
    bool m_readOnly = false;
    int m_precision = 6;
};
