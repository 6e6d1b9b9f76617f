#include "catalog/CatalogXml.h"

#include <QSet>
#include <boost/make_shared.hpp>
#include <charconv>
#include <deque>
#include <cstring>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

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
        // The key must outlive the parsed document it points into.
        m_keys.emplace_back(key);
        const std::string& stored = m_keys.back();
        QString text = QString::fromUtf8(stored.data(), qsizetype(stored.size()));
        m_strings.emplace(std::string_view(stored), text);
        return text;
    }

private:
    std::deque<std::string> m_keys;
    std::unordered_map<std::string_view, QString> m_strings;
    std::vector<std::pair<std::string, QString>> m_memo;
};

QString positionIn(const char* text, size_t size, ptrdiff_t offset)
{
    if (!text || offset < 0)
        return QStringLiteral("unknown position");
    const size_t end = std::min(size, size_t(offset));
    int line = 1;
    int column = 1;
    for (size_t i = 0; i < end; ++i) {
        const unsigned char c = static_cast<unsigned char>(text[i]);
        if (c == '\n') {
            ++line;
            column = 1;
        } else if ((c & 0xC0) != 0x80) { // count characters, not UTF-8 continuation bytes
            ++column;
        }
    }
    return QStringLiteral("line %1, column %2").arg(line).arg(column);
}

bool parseDocument(pugi::xml_document& doc, const char* data, size_t size, bool forceUtf8,
                   QString& error)
{
    error.clear();
    const pugi::xml_parse_result result = doc.load_buffer(
        data, size, pugi::parse_default, forceUtf8 ? pugi::encoding_utf8 : pugi::encoding_auto);
    if (!result) {
        error = QStringLiteral("not well-formed XML at %1: %2")
                    .arg(positionIn(data, size, result.offset),
                         QString::fromUtf8(result.description()));
        return false;
    }
    return true;
}

ItemReader::ItemReader() : m_pool(std::make_unique<StringPool>())
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
    // pugixml points at the element's name; the message points at its "<".
    ptrdiff_t offset = node.offset_debug();
    if (offset > 0 && m_text && size_t(offset) <= m_size && m_text[offset - 1] == '<')
        --offset;
    if (m_error.isEmpty())
        m_error = QStringLiteral("%1 (at %2)").arg(why, position(offset));
    return false;
}

boost::shared_ptr<CCatalogItem> ItemReader::readItem(pugi::xml_node node, bool withSubItems)
{
    CCatalog::ItemMap all;
    CCatalog::ItemMap* saved = m_all;
    m_all = withSubItems ? &all : nullptr;
    auto item = boost::make_shared<CCatalogItem>(CCatalogItem::NoProperties());
    const bool ok = readItemInto(node, item);
    m_all = saved;
    return ok ? item : boost::shared_ptr<CCatalogItem>();
}

bool ItemReader::readItems(pugi::xml_node parentNode, CCatalog::ItemMap& all,
                           CCatalog::ItemMap& roots)
{
    m_all = &all;
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
    m_all = nullptr;

    // Items written flat name their parent by GUID; link them now that all are known.
    for (auto& [item, parentGuid] : m_pendingParents) {
        auto parent = all.find(parentGuid);
        if (parent == all.end())
            continue; // the parent is not in this file: the item stays a root element
        item->SetParentItem(parent->second);
        parent->second->AddSubItem(item);
    }
    for (auto& [item, parentGuid] : m_pendingParents) {
        // A chain of parents must end; a cycle would make the tree endless.
        size_t steps = 0;
        for (auto up = item->GetParentItem(); up; up = up->GetParentItem()) {
            if (++steps > all.size()) {
                m_error = QStringLiteral("item %1 is its own ancestor").arg(item->GetGUID());
                return false;
            }
        }
    }
    for (const auto& [guid, item] : all)
        if (!item->GetParentItem())
            roots.emplace_hint(roots.end(), guid, item);
    return true;
}

bool ItemReader::readItemInto(pugi::xml_node node, const boost::shared_ptr<CCatalogItem>& item)
{
    CCatalogItem& target = *item;
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
            if (name[1] == 0)
                target.SetName(QString::fromUtf8(value));
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
    if (target.GetGUID().isEmpty())
        return fail(node, QStringLiteral("item without a GUID (attribute id)"));
    if (m_all) {
        auto [it, inserted] = m_all->emplace(target.GetGUID(), item);
        if (!inserted)
            return fail(node, QStringLiteral("GUID %1 is used by two items").arg(target.GetGUID()));
    }
    if (!readProperties(node, target))
        return false;

    if (!m_all)
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
    size_t categoryCount = 0;
    size_t propertyCount = 0;
    for (pugi::xml_node categoryNode = node.child(Names::category); categoryNode;
         categoryNode = categoryNode.next_sibling(Names::category)) {
        ++categoryCount;
        for (pugi::xml_node propertyNode = categoryNode.child(Names::property); propertyNode;
             propertyNode = propertyNode.next_sibling(Names::property))
            ++propertyCount;
    }
    auto properties = boost::make_shared<CPropertiesEx>();
    properties->Reserve(categoryCount);
    boost::shared_ptr<CCategory[]> categories;
    boost::shared_ptr<CPropertyEx[]> values;
    if (categoryCount)
        categories = boost::make_shared<CCategory[]>(categoryCount);
    if (propertyCount)
        values = boost::make_shared<CPropertyEx[]>(propertyCount);
    const QString nameTag = QString::fromUtf16(CatalogItemNameTag);

    size_t categoryIndex = 0;
    size_t propertyIndex = 0;
    for (pugi::xml_node categoryNode = node.child(Names::category); categoryNode;
         categoryNode = categoryNode.next_sibling(Names::category)) {
        CCategory& category = categories[categoryIndex++];
        category.SetName(m_pool->memo(categoryIndex - 1, categoryNode.attribute("n").value()));
        size_t inCategory = 0;
        for (pugi::xml_node propertyNode = categoryNode.child(Names::property); propertyNode;
             propertyNode = propertyNode.next_sibling(Names::property))
            ++inCategory;
        category.Reserve(inCategory);

        for (pugi::xml_node propertyNode = categoryNode.child(Names::property); propertyNode;
             propertyNode = propertyNode.next_sibling(Names::property)) {
            DataType type = DataType::String;
            const char* tag = "";
            const char* value = "";
            const char* caption = "";
            const char* picture = "";
            bool readOnly = false;
            for (pugi::xml_attribute attribute = propertyNode.first_attribute(); attribute;
                 attribute = attribute.next_attribute()) {
                const char* name = attribute.name();
                const char* text = attribute.value();
                if (equals(name, "t")) {
                    tag = text;
                } else if (equals(name, "v")) {
                    value = text;
                } else if (equals(name, "y")) {
                    if (!dataTypeFromName(QString::fromUtf8(text), type))
                        return fail(propertyNode, QStringLiteral("unknown property type y=\"%1\"")
                                                      .arg(QString::fromUtf8(text)));
                } else if (equals(name, "cap")) {
                    caption = text;
                } else if (equals(name, "pic")) {
                    picture = text;
                } else if (equals(name, "ro")) {
                    if (!toFlag(text, readOnly))
                        return fail(propertyNode, QStringLiteral("read-only flag ro=\"%1\" is not 0 or 1")
                                                      .arg(QString::fromUtf8(text)));
                }
            }
            if (*tag == 0)
                return fail(propertyNode, QStringLiteral("property without a tag (attribute t)"));

            CPropertyEx& property = values[propertyIndex++];
            property.SetTag(m_pool->memo(64 + propertyIndex, tag));
            QString valueText = m_pool->get(value);
            // The name property repeats the item's name: share its text.
            if (property.GetTag() == nameTag && valueText == item.GetName())
                valueText = item.GetName();
            property.SetValue(CDataBox(type, valueText));
            pugi::xml_node choiceNode = propertyNode.child(Names::choice);
            if (*caption || *picture || readOnly || choiceNode)
                property.SetExtra(extra(caption, picture, readOnly, choiceNode));
            category.AddPropertyEx(boost::shared_ptr<CPropertyEx>(values, &property));
        }
        properties->AddCategory(boost::shared_ptr<CCategory>(categories, &category));
    }
    item.SetProperties(properties);
    return true;
}

CPropertyEx::ExtraPtr ItemReader::extra(const char* caption,
                                                              const char* picture, bool readOnly,
                                                              pugi::xml_node choiceNode)
{
    // Equal captions, pictures and choice lists share one block.
    std::string key;
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
    m_extras.emplace(std::move(key), keep);
    return keep;
}

} // namespace ZEVGis::Data::CatalogXml
