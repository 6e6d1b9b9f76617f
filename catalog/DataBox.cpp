#include "catalog/DataBox.h"

#include <QLocale>

namespace ZEVGis::Data
{

QString dataTypeName(DataType type)
{
    switch (type) {
    case DataType::String: return QStringLiteral("string");
    case DataType::Integer: return QStringLiteral("int");
    case DataType::Double: return QStringLiteral("double");
    case DataType::Boolean: return QStringLiteral("bool");
    case DataType::Choice: return QStringLiteral("choice");
    }
    return QStringLiteral("string");
}

bool dataTypeFromName(QStringView name, DataType& type)
{
    if (name == u"string")
        type = DataType::String;
    else if (name == u"int")
        type = DataType::Integer;
    else if (name == u"double")
        type = DataType::Double;
    else if (name == u"bool")
        type = DataType::Boolean;
    else if (name == u"choice")
        type = DataType::Choice;
    else
        return false;
    return true;
}

CDataBox CDataBox::fromInt(qint64 value)
{
    return CDataBox(DataType::Integer, QString::number(value));
}

CDataBox CDataBox::fromDouble(double value)
{
    // Shortest text that reads back as the same double.
    return CDataBox(DataType::Double, QString::number(value, 'g', QLocale::FloatingPointShortest));
}

CDataBox CDataBox::fromBool(bool value)
{
    return CDataBox(DataType::Boolean, value ? QStringLiteral("1") : QStringLiteral("0"));
}

CDataBox CDataBox::fromString(const QString& value)
{
    return CDataBox(DataType::String, value);
}

qint64 CDataBox::ToInt(bool* ok) const
{
    bool good = false;
    qint64 value = m_text.trimmed().toLongLong(&good);
    if (!good) {
        // "12.0" or "1e3" typed into an integer field still mean a number.
        const double d = m_text.trimmed().toDouble(&good);
        value = good ? qint64(d) : 0;
    }
    if (ok)
        *ok = good;
    return value;
}

double CDataBox::ToDouble(bool* ok) const
{
    bool good = false;
    QString text = m_text.trimmed();
    double value = text.toDouble(&good);
    if (!good && text.contains(u',')) {
        // Values typed with a decimal comma (Croatian habit).
        text.replace(u',', u'.');
        value = text.toDouble(&good);
    }
    if (ok)
        *ok = good;
    return good ? value : 0.0;
}

bool CDataBox::ToBool() const
{
    const QString text = m_text.trimmed();
    if (text.isEmpty())
        return false;
    if (text == u"1" || text.compare(u"true", Qt::CaseInsensitive) == 0
        || text.compare(u"yes", Qt::CaseInsensitive) == 0 || text.compare(u"da", Qt::CaseInsensitive) == 0)
        return true;
    bool ok = false;
    const double d = text.toDouble(&ok);
    return ok && d != 0.0;
}

} // namespace ZEVGis::Data
