#include "editor/SiblingOrder.h"

#include "catalog/CatalogItem.h"

#include <algorithm>
#include <limits>

namespace ZEVGis::Editor
{

using Data::CCatalogItem;

void SwapWithNeighbour(const ItemList& siblings, const QString& guid, bool towardsEnd)
{
    if (siblings.size() < 2)
        return;
    for (size_t i = 0; i < siblings.size(); ++i)
    {
        const size_t neighbour = towardsEnd ? i + 1 : i - 1;
        if ((towardsEnd && neighbour >= siblings.size()) || (!towardsEnd && i == 0))
            continue;
        CCatalogItem* entry = siblings[i].get();
        CCatalogItem* other = siblings[neighbour].get();
        if (!entry || !other || entry->GetGUID() != guid)
            continue;
        const int ord = entry->GetOrd();
        entry->SetOrd(other->GetOrd());
        other->SetOrd(ord);
        return;
    }
}

long long NumericNameKey(const QString& name)
{
    if (name.isEmpty())
        return -1;
    // The first character is never part of the key: the scan stops one short of it.
    constexpr qsizetype MaxDigits = 18; // still fits a long long
    long long key = 0;
    long long scale = 1;
    for (qsizetype k = 1; k < name.size(); ++k)
    {
        const QChar c = name.at(name.size() - k);
        if (c < u'0' || c > u'9')
            break;
        if (k > MaxDigits)
            return std::numeric_limits<long long>::max();
        key += (c.unicode() - u'0') * scale;
        scale *= 10;
    }
    return key;
}

namespace
{

bool EndsWithDigitOrIsEmpty(const QString& name)
{
    return name.isEmpty() || (name.back() >= u'0' && name.back() <= u'9');
}

template <typename Key>
void Renumber(std::vector<std::pair<Key, CCatalogItem*>>& keyed, bool ascending)
{
    std::stable_sort(keyed.begin(), keyed.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    if (!ascending)
        std::reverse(keyed.begin(), keyed.end());
    int ord = 0;
    for (const auto& [key, item] : keyed)
        item->SetOrd(ord++);
}

} // namespace

void RenumberByName(const ItemList& siblings, bool ascending)
{
    const bool numeric = std::all_of(siblings.begin(), siblings.end(),
                                     [](const auto& item)
                                     { return !item || EndsWithDigitOrIsEmpty(item->GetName()); });
    if (numeric)
    {
        std::vector<std::pair<long long, CCatalogItem*>> keyed;
        for (const auto& item : siblings)
            if (item)
                keyed.emplace_back(NumericNameKey(item->GetName()), item.get());
        Renumber(keyed, ascending);
        return;
    }
    std::vector<std::pair<QString, CCatalogItem*>> keyed;
    for (const auto& item : siblings)
        if (item)
            keyed.emplace_back(item->GetName(), item.get());
    Renumber(keyed, ascending);
}

} // namespace ZEVGis::Editor
