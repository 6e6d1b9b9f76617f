#pragma once

#include <QString>
#include <QStringList>

namespace ZEVGis::Data
{

// Kinds of property values; the name in parentheses is the catalog file's "type" attribute.
enum class DataType : unsigned char
{
    String,  // "string"
    Integer, // "int"
    Double,  // "double"
    Boolean, // "bool"
    Choice   // "choice": one of the property's choices
};

QString dataTypeName(DataType type);
// false when the name is not a known type; `type` is then left alone.
bool dataTypeFromName(QStringView name, DataType& type);

// A typed value. The value is kept as its canonical text (doubles in shortest round-trip
// form, booleans as "1"/"0") so that catalogs load without converting every number.
class CDataBox
{
public:
    CDataBox() = default;
    CDataBox(DataType type, const QString& text) : m_text(text), m_type(type) {}

    static CDataBox fromInt(qint64 value);
    static CDataBox fromDouble(double value);
    static CDataBox fromBool(bool value);
    static CDataBox fromString(const QString& value);

    DataType GetType() const { return m_type; }
    QString ToString() const { return m_text; }
    operator QString() const { return m_text; }

    qint64 ToInt(bool* ok = nullptr) const;
    double ToDouble(bool* ok = nullptr) const;
    bool ToBool() const;

    bool operator==(const CDataBox& other) const = default;

private:
    QString m_text;
    DataType m_type = DataType::String;
};

} // namespace ZEVGis::Data
