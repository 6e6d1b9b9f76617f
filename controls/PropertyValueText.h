#pragma once

#include "catalog/DataBox.h"

#include <QLocale>
#include <QStringList>

// How the property grid turns values into text and typed text back into values.

// The grid's precision of doubles: digits after the decimal point.
inline constexpr int kDefaultDoublePrecision = 6;
inline constexpr int kMaxDoublePrecision = 15;
int clampDoublePrecision(int digits);

// The text the grid shows for `value`: doubles rounded to at most `precision` decimals,
// without trailing zeros or digit grouping, in `locale`'s way ("185,5" in Croatian); other
// values as they are stored. A double whose text is not a number is shown as it is.
QString formatPropertyValue(const ZEVGis::Data::CDataBox& value, int precision,
                            const QLocale& locale = QLocale());

// Reads `input` as a value of `type`. Integers must fit in 64 bits; doubles may use a
// decimal comma, or be written in `locale`'s way, and must be finite; booleans are 1/0/true/false; a choice must be one of
// `choices` (any text when there are none). On success `out` holds the value in its stored
// form and true is returned; otherwise `out` is left alone.
bool parsePropertyValue(ZEVGis::Data::DataType type, const QString& input,
                        const QStringList& choices, ZEVGis::Data::CDataBox& out,
                        const QLocale& locale = QLocale());
