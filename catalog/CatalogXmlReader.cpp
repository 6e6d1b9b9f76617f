#include "catalog/CatalogXml.h"

#include <algorithm>
#include <boost/make_shared.hpp>
#include <charconv>
#include <cstring>
#include <deque>
#include <string_view>
#include <unordered_map>

Q_LOGGING_CATEGORY(lcCatalog, "zevx.catalog")

namespace ZEVGis::Data::CatalogXml
{

namespace
{

// Texts up to this many bytes are shared through the pool; longer ones are mostly unique.
constexpr size_t PooledTextLimit = 40;

bool equals(const char* a, const char* b)
{
    return std::strcmp(a, b) == 0;
}

bool toInt(const char* text, int& value)
{
    const char* end = text + std::strlen(text);
    while (text < end && (*text == ' ' || *text == '\t'))
        ++text;
    while (end > text && (end[-1] == ' ' || end[-1] == '\t'))
        --end;
    if (text < end && *text == '+')
        ++text;
    auto [ptr, ec] = std::from_chars(text, end, value);
    return ec == std::errc() && ptr == end && text != end;
}

bool typeFromName(const char* text, DataType& type)
{
    static constexpr std::pair<const char*, DataType> names[] = {
        {"string", DataType::String}, {"int", DataType::Integer}, {"double", DataType::Double},
        {"bool", DataType::Boolean}, {"choice", DataType::Choice}};
    for (const auto& [name, value] : names) {
        if (equals(text, name)) {
            type = value;
            return true;
        }
    }
    return false;
}

bool toFlag(const char* text, bool& value)
{
    if (equals(text, "1") || equals(text, "true")) {
        value = true;
        return true;
    }
    if (equals(text, "0") || equals(text, "false") || *text == 0) {
        value = false;
        return true;
    }
    return false;
}

} // namespace

class StringPool
{
public:
    // Tags and category names come in the same order item after item: a memo per position
    // answers most of them with one strcmp instead of a hash look-up.
    QString memo(size_t slot, const char* utf8)
    {
        if (slot >= m_memo.size())
            m_memo.resize(slot + 1);
        auto& [text, string] = m_memo[slot];
        if (text == utf8)
            return string;
        string = get(utf8);
        text = utf8;
        return string;
    }

    // A property value at position `slot` of its item. Positions whose values hardly ever
    // repeat (article numbers, names) stop being looked up: pooling them only costs time.
    QString value(size_t slot, const char* utf8)
    {
        if (slot >= m_slots.size())
            m_slots.resize(slot + 1);
        SlotStats& stats = m_slots[slot];
        if (stats.unique)
            return QString::fromUtf8(utf8);
        const size_t before = m_misses;
        QString text = get(utf8);
        ++stats.lookups;
        stats.misses += unsigned(m_misses - before);
        if (stats.lookups == SlotProbe) {
            stats.unique = stats.misses * 2 > stats.lookups;
            stats.lookups = stats.misses = 0;
        }
        return text;
    }

    QString get(const char* utf8)
    {
        const size_t size = std::strlen(utf8);
        if (size == 0)
            return QString();
        if (size > PooledTextLimit)
            return QString::fromUtf8(utf8, qsizetype(size));
        const std::string_view key(utf8, size);
        auto it = m_strings.find(key);
        if (it != m_strings.end())
            return it->second;
        ++m_misses;
        QString text = QString::fromUtf8(utf8, qsizetype(size));
        if (m_strings.size() >= PoolLimit)
            return text;
        // The key must outlive the parsed document it points into.
        const std::string& stored = m_keys.emplace_back(key);
        m_strings.emplace(std::string_view(stored), text);
        return text;
    }

private:
    // Values looked at before a position's values are judged unique or shared.
    static constexpr unsigned SlotProbe = 512;
    // Beyond this many texts the pool stops growing: texts that keep repeating have
    // mostly been seen by then, and a small table stays in the cache.
    static constexpr size_t PoolLimit = 16384;

    struct SlotStats
    {
        unsigned lookups = 0;
        unsigned misses = 0;
        bool unique = false;
    };

    std::deque<std::string> m_keys;
    std::unordered_map<std::string_view, QString> m_strings;
    std::vector<std::pair<std::string, QString>> m_memo;
    std::vector<SlotStats> m_slots;
    size_t m_misses = 0;
};

bool readableFormat(pugi::xml_node root, QString& why)
{
    const pugi::xml_attribute attribute = root.attribute("format");
    int format = 1;
    if (attribute && (!toInt(attribute.value(), format) || format < 1)) {
        why = QStringLiteral("format=\"%1\" is not a format version")
                  .arg(QString::fromUtf8(attribute.value()));
        return false;
    }
    if (format > FormatVersion) {
        why = QStringLiteral("format %1 is newer than this program reads (%2)")
                  .arg(format).arg(FormatVersion);
        return false;
    }
    return true;
}

ItemReader::ItemReader()
    : m_pool(std::make_unique<StringPool>()), m_nameTag(QString::fromUtf16(CatalogItemNameTag))
{
}

ItemReader::~ItemReader() = default;

QString ItemReader::position(ptrdiff_t offset) const
{
    return positionIn(m_text, m_size, offset);
}

QString ItemReader::text(const char* utf8)
{
    return m_pool->get(utf8);
}

bool ItemReader::fail(pugi::xml_node node, const QString& why)
{
    return failAt(node.offset_debug(), why);
}

bool ItemReader::failAt(ptrdiff_t offset, const QString& why)
{
    // pugixml points at the element's name; the message points at its "<".
    if (offset > 0 && m_text && size_t(offset) <= m_size && m_text[offset - 1] == '<')
        --offset;
    if (m_error.isEmpty())
        m_error = QStringLiteral("%1 (at %2)").arg(why, position(offset));
    return false;
}

boost::shared_ptr<CCatalogItem> ItemReader::readItem(pugi::xml_node node, bool withSubItems)
{
    const bool saved = m_withSubItems;
    m_withSubItems = withSubItems;
    m_collected.clear();
    auto item = boost::make_shared<CCatalogItem>(CCatalogItem::NoProperties());
    bool ok = readItemInto(node, item);
    if (ok && withSubItems) {
        CCatalog::ItemMap all;
        ok = collectedInto(all);
    }
    m_withSubItems = saved;
    return ok ? item : boost::shared_ptr<CCatalogItem>();
}

bool ItemReader::collectedInto(CCatalog::ItemMap& all)
{
    // One sort and appends at the map's end cost far less than a hundred thousand
    // look-ups and inserts into a growing tree. The sort compares the first eight UTF-16
    // units as two integers (the order QString compares in) and whole GUIDs only on a
    // tie; equal GUIDs end up side by side, in document order.
    struct Key
    {
        quint64 high;
        quint64 low;
        quint32 index;
    };
    const auto units = [](const QString& text, qsizetype from) {
        quint64 key = 0;
        for (qsizetype i = from; i < from + 4; ++i)
            key = (key << 16) | (i < text.size() ? text.at(i).unicode() : 0u);
        return key;
    };
    std::vector<Key> keys;
    keys.reserve(m_collected.size());
    for (size_t i = 0; i < m_collected.size(); ++i)
        keys.push_back({units(m_collected[i].guid, 0), units(m_collected[i].guid, 4), quint32(i)});
    std::sort(keys.begin(), keys.end(), [this](const Key& a, const Key& b) {
        if (a.high != b.high)
            return a.high < b.high;
        if (a.low != b.low)
            return a.low < b.low;
        const int order = m_collected[a.index].guid.compare(m_collected[b.index].guid);
        return order != 0 ? order < 0 : a.index < b.index;
    });
    for (size_t i = 1; i < keys.size(); ++i) {
        const Collected& entry = m_collected[keys[i].index];
        if (entry.guid == m_collected[keys[i - 1].index].guid) {
            failAt(entry.offset, QStringLiteral("GUID %1 is used by two items").arg(entry.guid));
            m_collected.clear();
            return false;
        }
    }
    for (const Key& key : keys) {
        Collected& entry = m_collected[key.index];
        all.emplace_hint(all.end(), std::move(entry.guid), std::move(entry.item));
    }
    m_collected.clear();
    return true;
}

bool ItemReader::readItems(pugi::xml_node parentNode, CCatalog::ItemMap& all,
                           CCatalog::ItemMap& roots)
{
    m_withSubItems = true;
    m_collected.clear();
    m_pendingParents.clear();
    for (pugi::xml_node child = parentNode.first_child(); child; child = child.next_sibling()) {
        if (child.type() != pugi::node_element || !equals(child.name(), Names::item))
            continue;
        auto item = boost::make_shared<CCatalogItem>(CCatalogItem::NoProperties());
        if (!readItemInto(child, item))
            return false;
        if (!item->GetParentItemGuid().isEmpty())
            m_pendingParents.emplace_back(item, item->GetParentItemGuid());
    }
    if (!collectedInto(all))
        return false;

    // Items written flat name their parent by GUID; link them now that all are known.
    for (auto& [item, parentGuid] : m_pendingParents) {
        auto parent = all.find(parentGuid);
        if (parent == all.end())
            continue; // the parent is not in this file: the item stays a root element
        item->SetParentItem(parent->second);
        parent->second->AddSubItem(item);
    }
    // Only items written flat can form a loop or a chain deeper than nesting allows.
    if (!m_pendingParents.empty() && !checkTreeDepth(all, m_error)) {
        // The links made above hold each other: undo them, or the items are never freed.
        for (const auto& entry : all)
            entry.second->GetSubItems()->clear();
        return false;
    }
    for (const auto& [guid, item] : all)
        if (!item->GetParentItem())
            roots.emplace_hint(roots.end(), guid, item);
    return true;
}

bool ItemReader::readAttributes(pugi::xml_node node, CCatalogItem& target)
{
    for (pugi::xml_attribute attribute = node.first_attribute(); attribute;
         attribute = attribute.next_attribute()) {
        const char* name = attribute.name();
        const char* value = attribute.value();
        int number = 0;
        bool flag = false;
        switch (name[0]) {
        case 'i':
            if (equals(name, "id"))
                target.SetGUID(QString::fromUtf8(value));
            break;
        case 'n':
            if (name[1] == 0) {
                target.SetName(QString::fromUtf8(value));
                m_itemName = value;
            }
            break;
        case 'm':
            if (name[1] == 0) {
                if (!toInt(value, number))
                    return fail(node, QStringLiteral("message number m=\"%1\" is not a number")
                                          .arg(QString::fromUtf8(value)));
                target.SetMsgName(number);
            }
            break;
        case 'g':
            if (name[1] == 0) {
                if (!toFlag(value, flag))
                    return fail(node, QStringLiteral("group flag g=\"%1\" is not 0 or 1")
                                          .arg(QString::fromUtf8(value)));
                target.SetIsGroup(flag);
            }
            break;
        case 'o':
            if (name[1] == 0) {
                if (!toInt(value, number))
                    return fail(node, QStringLiteral("order number o=\"%1\" is not a number")
                                          .arg(QString::fromUtf8(value)));
                target.SetOrd(number);
            }
            break;
        case 'd':
            if (name[1] == 0) {
                if (!toFlag(value, flag))
                    return fail(node, QStringLiteral("default flag d=\"%1\" is not 0 or 1")
                                          .arg(QString::fromUtf8(value)));
                target.SetIsDefault(flag);
            }
            break;
        case 'p':
            if (name[1] == 0)
                target.SetParentItemGuid(QString::fromUtf8(value));
            else if (equals(name, "pic"))
                target.SetPictureRef(m_pool->get(value));
            break;
        case 't':
            if (equals(name, "tpl"))
                target.SetTemplateName(m_pool->get(value));
            break;
        default:
            break; // attributes of later format versions are ignored
        }
    }
    return true;
}

bool ItemReader::readItemInto(pugi::xml_node node, const boost::shared_ptr<CCatalogItem>& item)
{
    CCatalogItem& target = *item;
    m_itemName = "";
    if (!readAttributes(node, target))
        return false;
    if (target.GetGUID().isEmpty())
        return fail(node, QStringLiteral("item without a GUID (attribute id)"));
    if (m_withSubItems)
        m_collected.push_back({target.GetGUID(), item, node.offset_debug()});
    if (!readProperties(node, target))
        return false;

    if (!m_withSubItems)
        return true; // template definitions carry no sub-items
    for (pugi::xml_node child = node.child(Names::item); child;
         child = child.next_sibling(Names::item)) {
        if (m_depth >= MaxItemDepth)
            return fail(child, QStringLiteral("items nested deeper than %1 levels").arg(MaxItemDepth));
        auto sub = boost::make_shared<CCatalogItem>(CCatalogItem::NoProperties());
        ++m_depth;
        const bool ok = readItemInto(child, sub);
        --m_depth;
        if (!ok)
            return false;
        // Nesting decides the parent; a "p" attribute on a nested item is ignored.
        sub->SetParentItem(item);
        target.AddSubItem(sub);
    }
    return true;
}

bool ItemReader::readProperties(pugi::xml_node node, CCatalogItem& item)
{
    // The properties of one item live in one array and its categories in another; the
    // categories hold aliasing pointers into the property array, the CPropertiesEx into
    // the category array. That saves an allocation and a reference count per property and
    // per category, most of a loaded catalog's memory, and keeps every pointer handed out
    // an owner of what it points to.
    m_categoryNodes.clear();
    m_propertyNodes.clear();
    for (pugi::xml_node categoryNode = node.child(Names::category); categoryNode;
         categoryNode = categoryNode.next_sibling(Names::category)) {
        m_categoryNodes.push_back(categoryNode);
        for (pugi::xml_node propertyNode = categoryNode.child(Names::property); propertyNode;
             propertyNode = propertyNode.next_sibling(Names::property))
            m_propertyNodes.push_back(propertyNode);
        m_propertyNodes.push_back(pugi::xml_node()); // end of the category
    }
    const size_t categoryCount = m_categoryNodes.size();
    const size_t propertyCount = m_propertyNodes.size() - categoryCount;
    auto properties = boost::make_shared<CPropertiesEx>();
    properties->Reserve(categoryCount);
    boost::shared_ptr<CCategory[]> categories;
    boost::shared_ptr<CPropertyEx[]> values;
    if (categoryCount)
        categories = boost::make_shared<CCategory[]>(categoryCount);
    if (propertyCount)
        values = boost::make_shared<CPropertyEx[]>(propertyCount);

    size_t propertyIndex = 0;
    auto propertyNode = m_propertyNodes.begin();
    for (size_t categoryIndex = 0; categoryIndex < categoryCount; ++categoryIndex) {
        CCategory& category = categories[categoryIndex];
        category.SetName(m_pool->memo(categoryIndex, m_categoryNodes[categoryIndex].attribute("n").value()));
        const auto categoryEnd = std::find(propertyNode, m_propertyNodes.end(), pugi::xml_node());
        category.Reserve(size_t(categoryEnd - propertyNode));
        for (; propertyNode != categoryEnd; ++propertyNode) {
            CPropertyEx& property = values[propertyIndex];
            if (!readProperty(*propertyNode, propertyIndex++, property, item))
                return false;
            category.AddPropertyEx(boost::shared_ptr<CPropertyEx>(values, &property));
        }
        ++propertyNode; // past the end mark
        properties->AddCategory(boost::shared_ptr<CCategory>(categories, &category));
    }
    item.SetProperties(properties);
    return true;
}

bool ItemReader::readProperty(pugi::xml_node node, size_t slot, CPropertyEx& property,
                              const CCatalogItem& item)
{
    DataType type = DataType::String;
    const char* tag = "";
    const char* value = "";
    const char* caption = "";
    const char* picture = "";
    bool readOnly = false;
    for (pugi::xml_attribute attribute = node.first_attribute(); attribute;
         attribute = attribute.next_attribute()) {
        const char* name = attribute.name();
        const char* text = attribute.value();
        if (equals(name, "t")) {
            tag = text;
        } else if (equals(name, "v")) {
            value = text;
        } else if (equals(name, "y")) {
            if (!typeFromName(text, type))
                return fail(node, QStringLiteral("unknown property type y=\"%1\"")
                                      .arg(QString::fromUtf8(text)));
        } else if (equals(name, "cap")) {
            caption = text;
        } else if (equals(name, "pic")) {
            picture = text;
        } else if (equals(name, "ro")) {
            if (!toFlag(text, readOnly))
                return fail(node, QStringLiteral("read-only flag ro=\"%1\" is not 0 or 1")
                                      .arg(QString::fromUtf8(text)));
        }
    }
    if (*tag == 0)
        return fail(node, QStringLiteral("property without a tag (attribute t)"));

    property.SetTag(m_pool->memo(64 + slot, tag));
    // The name property repeats the item's name: share its text.
    if (property.GetTag() == m_nameTag && equals(value, m_itemName))
        property.SetValue(CDataBox(type, item.GetName()));
    else
        property.SetValue(CDataBox(type, m_pool->value(slot, value)));
    pugi::xml_node choiceNode = node.child(Names::choice);
    if (*caption || *picture || readOnly || choiceNode)
        property.SetExtra(extra(caption, picture, readOnly, choiceNode));
    return true;
}

CPropertyEx::ExtraPtr ItemReader::extra(const char* caption, const char* picture, bool readOnly,
                                        pugi::xml_node choiceNode)
{
    // Equal captions, pictures and choice lists share one block.
    std::string& key = m_extraKey;
    key.clear();
    key.append(caption).push_back('\x01');
    key.append(picture).push_back('\x01');
    key.push_back(readOnly ? '1' : '0');
    for (pugi::xml_node choice = choiceNode; choice; choice = choice.next_sibling(Names::choice))
        key.append("\x01").append(choice.attribute("v").value());
    auto it = m_extras.find(key);
    if (it != m_extras.end())
        return it->second;
    auto* block = new CPropertyEx::Extra;
    CPropertyEx::ExtraPtr keep(block);
    block->caption = m_pool->get(caption);
    block->pictureRef = m_pool->get(picture);
    block->readOnly = readOnly;
    for (pugi::xml_node choice = choiceNode; choice; choice = choice.next_sibling(Names::choice))
        block->choices.append(m_pool->get(choice.attribute("v").value()));
    m_extras.emplace(key, keep);
    return keep;
}

} // namespace ZEVGis::Data::CatalogXml
