#pragma once

#include <QSet>
#include <QString>
#include <map>

namespace ZEVGis::Topology
{

// Hands out names built from a base that none of the added names has.
//
// Numbering: the pattern's length is the least number of digits of the counter
// ("xx": 01, 02, ...). When the base holds "#", the first "#" is replaced by the counter
// and the bare base is never offered ("Group_#" -> "Group_01", "Group_02", ...).
// Otherwise the base itself comes first, then the base followed by the counter
// ("Cable", "Cable01", "Cable02", ...). The counter only moves forward, so each call costs
// O(1) amortised.
class CNameSet
{
public:
    // `bases`: key 0 holds the base name. `flags`, `firstNumber` and `extra` are accepted for
    // the established interface; firstNumber > 0 starts the counter there instead of at 1.
    CNameSet(const QString& pattern, const std::map<int, QString>& bases, unsigned flags,
             int firstNumber, const std::map<int, QString>& extra);

    void AddName(const QString& name);
    // A name not among the added ones. With `addToSet` true it is added, so the next call
    // gives another name.
    QString GetNextName(bool addToSet);

private:
    QString candidate(int number) const;

    QSet<QString> m_names;
    QString m_base;
    int m_digits = 1;
    int m_next = 1;
    bool m_baseOffered = false;
};

} // namespace ZEVGis::Topology
