#include "catalog/CatalogXml.h"

#include <charconv>
#include <unordered_map>

namespace ZEVGis::Data::CatalogXml
{

void XmlOut::escaped(QStringView text)
{
    // UTF-16 to UTF-8 with XML escapes, straight into the buffer. Characters XML 1.0
    // cannot carry at all (most control characters, lone surrogates, U+FFFE/U+FFFF) are
    // left out: no reader could take them back.
    const char16_t* p = text.utf16();
    const char16_t* end = p + text.size();
    for (; p < end; ++p) {
        const char16_t c = *p;
        if (c < 0x80) {
            switch (c) {
            case '&': m_out.append("&amp;", 5); break;
            case '<': m_out.append("&lt;", 4); break;
            case '>': m_out.append("&gt;", 4); break;
            case '"': m_out.append("&quot;", 6); break;
            case '\n': m_out.append("&#10;", 5); break;
            case '\r': m_out.append("&#13;", 5); break;
            case '\t': m_out.append("&#9;", 4); break;
            default:
                if (c >= 0x20)
                    m_out.push_back(char(c));
                break;
            }
        } else if (c < 0x800) {
            m_out.push_back(char(0xC0 | (c >> 6)));
            m_out.push_back(char(0x80 | (c & 0x3F)));
        } else if (QChar::isHighSurrogate(c)) {
            if (p + 1 < end && QChar::isLowSurrogate(p[1])) {
                const char32_t u = QChar::surrogateToUcs4(c, p[1]);
                ++p;
                m_out.push_back(char(0xF0 | (u >> 18)));
                m_out.push_back(char(0x80 | ((u >> 12) & 0x3F)));
                m_out.push_back(char(0x80 | ((u >> 6) & 0x3F)));
                m_out.push_back(char(0x80 | (u & 0x3F)));
            }
        } else if (QChar::isLowSurrogate(c) || c == 0xFFFE || c == 0xFFFF) {
            continue;
        } else {
            m_out.push_back(char(0xE0 | (c >> 12)));
            m_out.push_back(char(0x80 | ((c >> 6) & 0x3F)));
            m_out.push_back(char(0x80 | (c & 0x3F)));
        }
    }
}

bool holdsNonXmlCharacter(QStringView text)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text[i].unicode();
        if (c < 0x20 ? c != '\t' && c != '\n' && c != '\r' : c == 0xFFFE || c == 0xFFFF)
            return true;
        if (QChar::isHighSurrogate(c) && i + 1 < text.size() && QChar::isLowSurrogate(text[i + 1].unicode()))
            ++i;
        else if (QChar::isSurrogate(c))
            return true;
    }
    return false;
}

bool checkWritable(const CCatalog::ItemMap& all, QString& why)
{
    for (const auto& [guid, item] : all) {
        if (holdsNonXmlCharacter(guid)) {
            QString shown = guid;
            for (QChar& c : shown)
                if (holdsNonXmlCharacter(QStringView(&c, 1)))
                    c = QChar::ReplacementCharacter;
            why = QStringLiteral("the GUID %1 holds a character a catalog file cannot hold").arg(shown);
            return false;
        }
    }
    return checkTreeDepth(all, why);
}

void XmlOut::declaration()
{
    m_out.append("<?xml version=\"1.0\" encoding=\"UTF-8\"?>"); // each element starts its own line
}

void XmlOut::start(const char* name)
{
    closeStartTag();
    m_out.push_back('\n');
    m_out.append(m_open.size(), ' ');
    m_out.push_back('<');
    m_out.append(name);
    m_open.push_back(name);
    m_startOpen = true;
}

void XmlOut::attribute(const char* name, QStringView value)
{
    m_out.push_back(' ');
    m_out.append(name);
    m_out.append("=\"", 2);
    escaped(value);
    m_out.push_back('"');
}

void XmlOut::attribute(const char* name, const char* latin1)
{
    m_out.push_back(' ');
    m_out.append(name);
    m_out.append("=\"", 2);
    m_out.append(latin1);
    m_out.push_back('"');
}

void XmlOut::attribute(const char* name, int value)
{
    char digits[16];
    auto result = std::to_chars(digits, digits + sizeof digits, value);
    m_out.push_back(' ');
    m_out.append(name);
    m_out.append("=\"", 2);
    m_out.append(digits, size_t(result.ptr - digits));
    m_out.push_back('"');
}

void XmlOut::closeStartTag()
{
    if (m_startOpen) {
        m_out.push_back('>');
        m_startOpen = false;
    }
}

void XmlOut::end()
{
    const char* name = m_open.back();
    m_open.pop_back();
    if (m_startOpen) {
        m_out.append("/>", 2);
        m_startOpen = false;
    } else {
        m_out.push_back('\n');
        m_out.append(m_open.size(), ' ');
        m_out.append("</", 2);
        m_out.append(name);
        m_out.push_back('>');
    }
    if (m_open.empty())
        m_out.push_back('\n');
}

QByteArray XmlOut::take()
{
    QByteArray bytes(m_out.data(), qsizetype(m_out.size()));
    std::string().swap(m_out);
    return bytes;
}

namespace
{

const char* typeName(DataType type)
{
    switch (type) {
    case DataType::String: return "string";
    case DataType::Integer: return "int";
    case DataType::Double: return "double";
    case DataType::Boolean: return "bool";
    case DataType::Choice: return "choice";
    }
    return "string";
}

void writeProperties(XmlOut& out, CCatalogItem& item)
{
    auto properties = item.GetProperties();
    if (!properties)
        return;
    for (const auto& category : properties->categories()) {
        if (!category)
            continue;
        out.start(Names::category);
        out.attribute("n", category->GetName());
        for (const auto& property : category->GetPropertyExVector()) {
            if (!property)
                continue;
            const CDataBox value = property->GetValue();
            out.start(Names::property);
            out.attribute("t", property->GetTag());
            if (value.GetType() != DataType::String)
                out.attribute("y", typeName(value.GetType()));
            const QString text = value.ToString();
            if (!text.isEmpty())
                out.attribute("v", text);
            if (const auto extra = property->GetExtra()) {
                if (!extra->caption.isEmpty())
                    out.attribute("cap", extra->caption);
                if (!extra->pictureRef.isEmpty())
                    out.attribute("pic", extra->pictureRef);
                if (extra->readOnly)
                    out.attribute("ro", 1);
                for (const QString& choice : extra->choices) {
                    out.start(Names::choice);
                    out.attribute("v", choice);
                    out.end();
                }
            }
            out.end();
        }
        out.end();
    }
}

// Items of the catalog being written: false until written.
using WriteState = std::unordered_map<const CCatalogItem*, bool>;

void writeItemImpl(XmlOut& out, CCatalogItem& item, bool withSubItems, bool writeParentGuid,
                   WriteState* state, int depth)
{
    if (state)
        (*state)[&item] = true;
    out.start(Names::item);
    out.attribute("id", item.GetGUID());
    out.attribute("n", item.GetName());
    if (item.GetMsgName() != 0)
        out.attribute("m", item.GetMsgName());
    if (item.IsGroup())
        out.attribute("g", 1);
    if (item.GetOrd() != 0)
        out.attribute("o", item.GetOrd());
    if (item.GetIsDefault())
        out.attribute("d", 1);
    if (!item.GetPictureRef().isEmpty())
        out.attribute("pic", item.GetPictureRef());
    if (!item.GetTemplateName().isEmpty())
        out.attribute("tpl", item.GetTemplateName());
    if (writeParentGuid && !item.GetParentItemGuid().isEmpty())
        out.attribute("p", item.GetParentItemGuid());
    writeProperties(out, item);
    if (withSubItems && depth < MaxItemDepth) {
        std::vector<boost::shared_ptr<CCatalogItem>> subItems;
        item.GetSortedSubItems(subItems);
        for (const auto& sub : subItems) {
            // Only items the catalog knows: a sub-item whose AddItem failed (its GUID is
            // another item's) would make the file unreadable.
            if (state) {
                auto it = state->find(sub.get());
                if (it == state->end() || it->second)
                    continue;
            }
            writeItemImpl(out, *sub, true, false, state, depth + 1);
        }
    }
    out.end();
}

} // namespace

void writeItem(XmlOut& out, CCatalogItem& item, bool withSubItems, bool writeParentGuid)
{
    writeItemImpl(out, item, withSubItems, writeParentGuid, nullptr, 0);
}

QByteArray writeCatalog(const CCatalog& catalog)
{
    // CCatalog's accessors are not const; the writer changes nothing.
    CCatalog& source = const_cast<CCatalog&>(catalog);
    const CCatalog::ItemMap* all = source.GetAllElementsMap();
    XmlOut out;
    out.reserve(all->size() * 800 + 256);
    out.declaration();
    out.start(Names::catalog);
    out.attribute("ref", catalog.GetReference());
    out.attribute("format", FormatVersion);

    WriteState state;
    state.reserve(all->size());
    for (const auto& [guid, item] : *all)
        if (item && item->GetGUID() == guid)
            state.emplace(item.get(), false);
    std::vector<boost::shared_ptr<CCatalogItem>> roots;
    source.GetSortedRootElements(roots);
    for (const auto& root : roots)
        if (!state[root.get()])
            writeItemImpl(out, *root, true, true, &state, 0);

    // Items the tree walk did not reach (their parent is not in this catalog, or not
    // registered): written at the top with their parent's GUID, so nothing is lost.
    for (const auto& [guid, item] : *all) {
        auto it = state.find(item.get());
        if (it == state.end() || it->second)
            continue;
        auto top = item;
        size_t steps = 0;
        for (auto up = top->GetParentItem(); up && steps < all->size(); up = up->GetParentItem(), ++steps) {
            auto upState = state.find(up.get());
            if (upState == state.end() || upState->second)
                break;
            top = up;
        }
        writeItemImpl(out, *top, true, true, &state, 0);
    }
    out.end();
    return out.take();
}

} // namespace ZEVGis::Data::CatalogXml
