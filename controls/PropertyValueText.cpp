#include "controls/PropertyValueText.h"

#include <QLocale>
#include <algorithm>
#include <cmath>

using ZEVGis::Data::CDataBox;
using ZEVGis::Data::DataType;

int clampDoublePrecision(int digits)
{
    return std::clamp(digits, 0, kMaxDoublePrecision);
}

namespace
{

bool readDouble(const QString& input, double& value, const QLocale& locale)
{
    QLocale c = QLocale::c();
    c.setNumberOptions(QLocale::RejectGroupSeparator);
    QString text = input.trimmed();
    bool ok = false;
    double v = c.toDouble(text, &ok);
    if (!ok && text.count(u',') == 1 && !text.contains(u'.'))
    {
        text.replace(u',', u'.');
        v = c.toDouble(text, &ok);
    }
    if (!ok)
    {
        QLocale own = locale;
        own.setNumberOptions(QLocale::RejectGroupSeparator);
        v = own.toDouble(input.trimmed(), &ok);
    }
    if (!ok || !std::isfinite(v))
        return false;
    value = v;
    return true;
}

} // namespace

QString formatPropertyValue(const CDataBox& value, int precision, const QLocale& locale)
{
    if (value.GetType() != DataType::Double)
        return value.ToString();
    double v = 0;
    if (!readDouble(value.ToString(), v, QLocale::c()))
        return value.ToString();
    QLocale shown = locale;
    shown.setNumberOptions(QLocale::OmitGroupSeparator);
    QString text = shown.toString(v, 'f', clampDoublePrecision(precision));
    const QString point = shown.decimalPoint();
    const QString zero = shown.zeroDigit();
    if (text.contains(point))
    {
        while (text.endsWith(zero))
            text.chop(zero.size());
        if (text.endsWith(point))
            text.chop(point.size());
    }
    // A tiny negative number rounds to zero, which has no sign.
    if (text == shown.negativeSign() + zero)
        text = zero;
    return text;
}

bool parsePropertyValue(DataType type, const QString& input, const QStringList& choices,
                        CDataBox& out, const QLocale& locale)
{
    switch (type)
    {
    case DataType::String:
        out = CDataBox(DataType::String, input);
        return true;
    case DataType::Integer:
    {
        bool ok = false;
        const qint64 v = input.trimmed().toLongLong(&ok);
        if (!ok)
            return false;
        out = CDataBox::fromInt(v);
        return true;
    }
    case DataType::Double:
    {
        double v = 0;
        if (!readDouble(input, v, locale))
            return false;
        out = CDataBox::fromDouble(v);
        return true;
    }
    case DataType::Boolean:
    {
        const QString text = input.trimmed();
        if (text == u"1" || text.compare(u"true", Qt::CaseInsensitive) == 0)
            out = CDataBox::fromBool(true);
        else if (text == u"0" || text.compare(u"false", Qt::CaseInsensitive) == 0)
            out = CDataBox::fromBool(false);
        else
            return false;
        return true;
    }
    case DataType::Choice:
        if (!choices.isEmpty() && !choices.contains(input))
            return false;
        out = CDataBox(DataType::Choice, input);
        return true;
    }
    return false;
}
