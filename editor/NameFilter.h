#pragma once

#include <QString>
#include <QStringView>
#include <vector>

namespace ZEVGis::Editor
{

// The text typed into the trees' filter field. A name matches when it contains the text,
// ignoring case; a plain c, d, s or z typed also matches the Croatian letters č and ć, đ, š
// and ž, so that names can be found without a Croatian keyboard. Every letter maps to one
// letter, so positions in the name are positions of the match.
class NameFilter
{
public:
    struct Range
    {
        qsizetype start = 0;
        qsizetype length = 0;
        bool operator==(const Range&) const = default;
    };

    NameFilter() = default;
    explicit NameFilter(const QString& text);

    QString text() const { return m_text; }
    bool isEmpty() const { return m_pattern.isEmpty(); }

    // The name as a filter compares it: lower case, Croatian letters without their marks.
    // Kept with a row, it turns matching into one plain search.
    static QString fold(QStringView name);
    // Whether a folded name tells if the name matches: not when a marked letter was typed,
    // as a marked letter matches only itself.
    bool matchesByFold() const { return m_plain; }
    // matches(name) for `folded` == fold(name), when matchesByFold().
    bool matchesFolded(QStringView folded) const;
    // Whether every name this filter matches is matched by `wider` too, as when the user
    // types on: then only the names `wider` matched need to be asked again.
    bool narrows(const NameFilter& wider) const;

    // Where the first match at or after `from` starts; -1 for none (also for an empty filter).
    qsizetype indexIn(QStringView name, qsizetype from = 0) const;
    // True for every name when the filter is empty.
    bool matches(QStringView name) const { return isEmpty() || indexIn(name) >= 0; }
    // The matched parts of `name`, left to right, not overlapping.
    std::vector<Range> matchRanges(QStringView name) const;

private:
    QString m_text;
    QString m_pattern; // lower case
    bool m_plain = true; // no marked Croatian letter typed: a folded name can be searched
};

// Which rows a filtered tree shows: every row that `keep` accepts, and every ancestor of
// one. `parents[i]` is the index of row i's parent (-1 for a top row); a parent always comes
// before its children. A row shown is 1, a row hidden 0.
template <class Keep>
std::vector<char> ShownRows(const std::vector<int>& parents, Keep&& keep)
{
    std::vector<char> shown(parents.size(), 0);
    for (size_t i = 0; i < parents.size(); ++i)
        shown[i] = keep(i) ? 1 : 0;
    // Children come after their parents: a walk backwards carries a match up to the top.
    for (size_t i = parents.size(); i-- > 0;)
        if (shown[i] && parents[i] >= 0)
            shown[size_t(parents[i])] = 1;
    return shown;
}

} // namespace ZEVGis::Editor
