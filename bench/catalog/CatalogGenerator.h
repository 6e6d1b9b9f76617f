#pragma once

// A big catalog shaped like a utility's cable catalog: groups of groups of items, every
// entry with 10 properties in 3 categories, values drawn from realistic sets.

#include "catalog/Catalog.h"

#include <QString>
#include <boost/make_shared.hpp>

namespace ZevxBench
{

using namespace ZEVGis::Data;

inline QString benchGuid(int n)
{
    // Deterministic, upper-case braced like the host's GUIDs.
    return QStringLiteral("{%1-%2-4%3-A%4-%5}")
        .arg(quint32(n * 2654435761u), 8, 16, QLatin1Char('0'))
        .arg(n % 0xFFFF, 4, 16, QLatin1Char('0'))
        .arg((n / 7) % 0xFFF, 3, 16, QLatin1Char('0'))
        .arg((n / 3) % 0xFFF, 3, 16, QLatin1Char('0'))
        .arg(quint64(n) * 1000003ull, 12, 16, QLatin1Char('0'))
        .toUpper();
}

inline void addProperties(CCatalogItem& item, int n)
{
    static const char* const sections[] = {"35", "50", "70", "95", "120", "150", "185", "240", "300", "400"};
    static const char* const voltages[] = {"0.4", "10", "20", "35"};
    static const char* const materials[] = {"Al", "Cu", "Al/Fe"};
    static const char* const makers[] = {"Elka", "Nexans", "Prysmian", "Kabelwerk Ćuković"};
    auto properties = boost::make_shared<CPropertiesEx>();
    auto general = boost::make_shared<CCategory>(QStringLiteral("Općenito"));
    auto name = boost::make_shared<CPropertyEx>(QString::fromUtf16(CatalogItemNameTag),
                                                CDataBox::fromString(item.GetName()));
    name->SetCaption(QStringLiteral("Naziv"));
    general->AddPropertyEx(name);
    general->AddPropertyEx(boost::make_shared<CPropertyEx>(
        QStringLiteral("MANUFACTURER"), CDataBox::fromString(QString::fromUtf8(makers[n % 4]))));
    general->AddPropertyEx(boost::make_shared<CPropertyEx>(
        QStringLiteral("ARTICLE_NO"), CDataBox::fromString(QStringLiteral("A-%1").arg(n))));
    auto electrical = boost::make_shared<CCategory>(QStringLiteral("Električki podaci"));
    electrical->AddPropertyEx(boost::make_shared<CPropertyEx>(
        QStringLiteral("CROSS_SECTION"), CDataBox(DataType::Double, QString::fromLatin1(sections[n % 10]))));
    electrical->AddPropertyEx(boost::make_shared<CPropertyEx>(
        QStringLiteral("RATED_VOLTAGE"), CDataBox(DataType::Double, QString::fromLatin1(voltages[n % 4]))));
    electrical->AddPropertyEx(boost::make_shared<CPropertyEx>(
        QStringLiteral("RESISTANCE"), CDataBox::fromDouble(0.0125 * (1 + n % 97))));
    auto material = boost::make_shared<CPropertyEx>(
        QStringLiteral("CONDUCTOR"), CDataBox(DataType::Choice, QString::fromLatin1(materials[n % 3])));
    static const QStringList materialChoices{QStringLiteral("Al"), QStringLiteral("Cu"), QStringLiteral("Al/Fe")};
    material->SetChoices(materialChoices);
    electrical->AddPropertyEx(material);
    auto mechanical = boost::make_shared<CCategory>(QStringLiteral("Mehanički podaci"));
    mechanical->AddPropertyEx(boost::make_shared<CPropertyEx>(
        QStringLiteral("WEIGHT"), CDataBox::fromInt(200 + n % 50 * 10)));
    mechanical->AddPropertyEx(boost::make_shared<CPropertyEx>(
        QStringLiteral("ARMOURED"), CDataBox::fromBool(n % 5 == 0)));
    mechanical->AddPropertyEx(boost::make_shared<CPropertyEx>(
        QStringLiteral("BEND_RADIUS"), CDataBox::fromInt(15 + n % 10)));
    properties->AddCategory(general);
    properties->AddCategory(electrical);
    properties->AddCategory(mechanical);
    item.SetProperties(properties);
}

// `count` entries: 100 top groups, each with 10 sub-groups, the rest items under those.
inline void generateCatalog(CCatalog& catalog, int count)
{
    catalog.Clear();
    catalog.SetReference(QStringLiteral("BENCH"));
    int n = 0;
    std::vector<boost::shared_ptr<CCatalogItem>> leaves;
    const int tops = std::max(1, count / 1000);
    auto make = [&](const boost::shared_ptr<CCatalogItem>& parent, bool group) {
        auto item = boost::make_shared<CCatalogItem>();
        item->SetGUID(benchGuid(n));
        item->SetName(group ? QStringLiteral("Grupa %1").arg(n)
                            : QStringLiteral("NA2XS(F)2Y 1x%1/25 12/20 kV #%2").arg(120 + n % 5 * 30).arg(n));
        item->SetIsGroup(group);
        item->SetOrd(n % 17);
        item->SetTemplateName(group ? QString() : QStringLiteral("Kabel"));
        addProperties(*item, n);
        ++n;
        if (parent) {
            item->SetParentItem(parent);
            parent->AddSubItem(item);
        }
        catalog.AddItem(item);
        return item;
    };
    for (int t = 0; t < tops && n < count; ++t) {
        auto top = make(nullptr, true);
        for (int s = 0; s < 10 && n < count; ++s)
            leaves.push_back(make(top, true));
    }
    for (size_t i = 0; n < count; ++i)
        make(leaves[i % leaves.size()], false);
}

} // namespace ZevxBench
