#include "catalog/NameSet.h"

namespace ZEVGis::Topology
{

CNameSet::CNameSet(const QString& pattern, const std::map<int, QString>& bases, unsigned flags,
                   int firstNumber, const std::map<int, QString>& extra)
{
    Q_UNUSED(flags);
    Q_UNUSED(extra);
    auto base = bases.find(0);
    if (base != bases.end())
        m_base = base->second;
    m_digits = pattern.isEmpty() ? 1 : int(pattern.size());
    m_next = firstNumber > 0 ? firstNumber : 1;
    // "#" in the base, or an empty base: only numbered names are offered.
    m_baseOffered = m_base.isEmpty() || m_base.contains(u'#');
}

void CNameSet::AddName(const QString& name)
{
    m_names.insert(name);
}

QString CNameSet::candidate(int number) const
{
    const QString digits = QStringLiteral("%1").arg(number, m_digits, 10, QLatin1Char('0'));
    const qsizetype mark = m_base.indexOf(u'#');
    if (mark < 0)
        return m_base + digits;
    QString name = m_base;
    name.replace(mark, 1, digits);
    return name;
}

QString CNameSet::GetNextName(bool addToSet)
{
    if (!m_baseOffered) {
        if (!m_names.contains(m_base)) {
            if (addToSet) {
                m_names.insert(m_base);
                m_baseOffered = true;
            }
            return m_base;
        }
        m_baseOffered = true;
    }
    // The counter never goes back: every number below it was taken when it was passed.
    QString name = candidate(m_next);
    while (m_names.contains(name))
        name = candidate(++m_next);
    if (addToSet) {
        m_names.insert(name);
        ++m_next;
    }
    return name;
}

} // namespace ZEVGis::Topology
