#include "editor/NameFilter.h"

#include <algorithm>

namespace ZEVGis::Editor
{

namespace
{

// The letter a Croatian letter is typed as without its mark (lower case in, lower case out).
char16_t Unmarked(char16_t c)
{
    switch (c)
    {
    case u'č':
    case u'ć':
        return u'c';
    case u'đ':
        return u'd';
    case u'š':
        return u's';
    case u'ž':
        return u'z';
    default:
        return c;
    }
}

// Lower case; ASCII without a table look-up, as nearly every letter of a catalog name is.
inline char16_t Lower(char16_t c)
{
    if (c < 0x80)
        return c >= u'A' && c <= u'Z' ? char16_t(c + 32) : c;
    return QChar::toLower(c);
}

inline bool SameLetter(char16_t inName, char16_t typed)
{
    const char16_t lower = Lower(inName);
    return lower == typed || (lower >= 0x80 && Unmarked(lower) == typed);
}

} // namespace

NameFilter::NameFilter(const QString& text) : m_text(text), m_pattern(text.toLower())
{
    for (QChar c : m_pattern)
        if (Unmarked(c.unicode()) != c.unicode())
            m_plain = false;
}

QString NameFilter::fold(QStringView name)
{
    QString folded(name.size(), Qt::Uninitialized);
    char16_t* out = reinterpret_cast<char16_t*>(folded.data());
    for (qsizetype i = 0; i < name.size(); ++i)
        out[i] = Unmarked(Lower(name[i].unicode()));
    return folded;
}

bool NameFilter::matchesFolded(QStringView folded) const
{
    if (isEmpty())
        return true;
    // A plain letter typed matches a name's letter exactly when it is the folded letter. Names
    // are short: a plain loop beats a search that prepares itself for every name.
    const char16_t* pattern = reinterpret_cast<const char16_t*>(m_pattern.constData());
    const qsizetype length = m_pattern.size();
    const char16_t* text = folded.utf16();
    for (qsizetype start = 0; start + length <= folded.size(); ++start)
        if (text[start] == pattern[0] &&
            std::equal(pattern + 1, pattern + length, text + start + 1))
            return true;
    return false;
}

bool NameFilter::narrows(const NameFilter& wider) const
{
    return !wider.isEmpty() && m_pattern.contains(wider.m_pattern, Qt::CaseSensitive);
}

qsizetype NameFilter::indexIn(QStringView name, qsizetype from) const
{
    const qsizetype length = m_pattern.size();
    if (length == 0)
        return -1;
    const char16_t* pattern = reinterpret_cast<const char16_t*>(m_pattern.constData());
    for (qsizetype start = std::max<qsizetype>(from, 0); start + length <= name.size(); ++start)
    {
        qsizetype k = 0;
        while (k < length && SameLetter(name[start + k].unicode(), pattern[k]))
            ++k;
        if (k == length)
            return start;
    }
    return -1;
}

std::vector<NameFilter::Range> NameFilter::matchRanges(QStringView name) const
{
    std::vector<Range> ranges;
    for (qsizetype at = indexIn(name); at >= 0; at = indexIn(name, at + m_pattern.size()))
        ranges.push_back({at, m_pattern.size()});
    return ranges;
}

} // namespace ZEVGis::Editor
