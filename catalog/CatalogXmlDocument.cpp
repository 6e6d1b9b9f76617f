#include "catalog/CatalogXml.h"

#include <algorithm>
#include <cstring>
#include <unordered_map>

// The document-level checks of catalog and registry files: well-formedness, encoding, the
// positions that messages name, and the shape of the item tree once it is read.

namespace ZEVGis::Data::CatalogXml
{

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

namespace
{

// Where the first byte that cannot start or continue a UTF-8 sequence lies; `size` when
// there is none. Overlong forms, surrogates and code points past U+10FFFF count as bad.
// `suspect` is set when the text may hold a character XML 1.0 cannot hold: a control
// character other than tab, line feed and carriage return, U+FFFE, U+FFFF, or a character
// reference ("&#"), which may stand for one. Only such texts are searched for them.
size_t firstBadUtf8(const char* data, size_t size, bool& suspect)
{
    constexpr quint64 ones = 0x0101010101010101ULL;
    constexpr quint64 highs = 0x8080808080808080ULL;
    const auto* bytes = reinterpret_cast<const unsigned char*>(data);
    size_t i = 0;
    while (i < size) {
        // Mostly ASCII: eight bytes at a time while none has its high bit set, none is
        // below 0x20 and none is "&".
        quint64 word;
        if (i + 8 <= size && (std::memcpy(&word, bytes + i, 8), (word & highs) == 0)) {
            const quint64 amp = word ^ (ones * '&');
            if ((((word - ones * 0x20) | (amp - ones)) & highs) == 0) {
                i += 8;
                continue;
            }
        }
        const unsigned char lead = bytes[i];
        if (lead < 0x80) {
            if ((lead < 0x20 && lead != '\t' && lead != '\n' && lead != '\r')
                || (lead == '&' && i + 1 < size && bytes[i + 1] == '#'))
                suspect = true;
            ++i;
            continue;
        }
        size_t length = 0;
        unsigned char low = 0x80, high = 0xBF; // allowed range of the second byte
        if (lead >= 0xC2 && lead <= 0xDF) {
            length = 2;
        } else if (lead >= 0xE0 && lead <= 0xEF) {
            length = 3;
            low = lead == 0xE0 ? 0xA0 : 0x80;
            high = lead == 0xED ? 0x9F : 0xBF;
        } else if (lead >= 0xF0 && lead <= 0xF4) {
            length = 4;
            low = lead == 0xF0 ? 0x90 : 0x80;
            high = lead == 0xF4 ? 0x8F : 0xBF;
        } else {
            return i;
        }
        if (i + length > size || bytes[i + 1] < low || bytes[i + 1] > high)
            return i;
        for (size_t k = 2; k < length; ++k)
            if ((bytes[i + k] & 0xC0) != 0x80)
                return i;
        if (lead == 0xEF && bytes[i + 1] == 0xBF && bytes[i + 2] >= 0xBE)
            suspect = true;
        i += length;
    }
    return size;
}

// Where the first character XML 1.0 cannot hold lies in a UTF-8 text, or -1; `code` gets it.
// pugixml decodes "&#1;" and passes raw control bytes through, so both are caught here.
ptrdiff_t firstNonXmlCharacter(const char* text, char32_t& code)
{
    const auto* start = reinterpret_cast<const unsigned char*>(text);
    for (const unsigned char* s = start; *s; ++s) {
        const unsigned char c = *s;
        if (c >= 0x20 && c < 0xED)
            continue;
        if (c < 0x20) {
            if (c == '\t' || c == '\n' || c == '\r')
                continue;
            code = c;
        } else if (c == 0xED && s[1] >= 0xA0 && s[1] <= 0xBF) { // a surrogate, from "&#xD800;"
            code = 0xD000 | char32_t(s[1] & 0x3F) << 6 | char32_t(s[2] & 0x3F);
        } else if (c == 0xEF && s[1] == 0xBF && (s[2] == 0xBE || s[2] == 0xBF)) {
            code = s[2] == 0xBE ? 0xFFFE : 0xFFFF;
        } else if (c > 0xF4 || (c == 0xF4 && s[1] >= 0x90)) { // past U+10FFFF
            code = 0x110000;
        } else {
            continue;
        }
        return s - start;
    }
    return -1;
}

// Every text of the document (attribute values and element text) holds only
// characters XML 1.0 allows: what the reader takes in, the writer can put out again.
bool checkCharacters(const pugi::xml_document& doc, const char* data, size_t size, QString& error)
{
    char32_t code = 0;
    const auto refuse = [&](pugi::xml_node node, ptrdiff_t offset, const QString& what) {
        if (offset < 0 || size_t(offset) > size)
            offset = node.offset_debug();
        error = QStringLiteral("character U+%1 in %2 at %3: XML 1.0 cannot hold it")
                    .arg(QString::number(quint32(code), 16).toUpper().rightJustified(4, u'0'), what,
                         positionIn(data, size, offset));
        return false;
    };
    pugi::xml_node node = doc.first_child();
    while (node) {
        // The text's place in the parsed copy of the input, which matches the input's
        // offsets for UTF-8 files.
        const ptrdiff_t nodeOffset = node.offset_debug();
        const char* base = node.type() == pugi::node_element && nodeOffset >= 0 ? node.name() - nodeOffset : nullptr;
        for (pugi::xml_attribute attribute = node.first_attribute(); attribute; attribute = attribute.next_attribute()) {
            const ptrdiff_t bad = firstNonXmlCharacter(attribute.value(), code);
            if (bad >= 0) // exact unless escapes come before it in the value
                return refuse(node, base ? attribute.value() - base + bad : -1,
                              QStringLiteral("attribute %1 of <%2>").arg(QString::fromUtf8(attribute.name()),
                                                                        QString::fromUtf8(node.name())));
        }
        if (firstNonXmlCharacter(node.value(), code) >= 0)
            return refuse(node, nodeOffset, QStringLiteral("a text"));
        if (firstNonXmlCharacter(node.name(), code) >= 0)
            return refuse(node, nodeOffset, QStringLiteral("an element name"));
        // Depth first, without recursion: documents may nest deep.
        if (pugi::xml_node child = node.first_child()) {
            node = child;
            continue;
        }
        while (node && !node.next_sibling())
            node = node.parent();
        if (node)
            node = node.next_sibling();
    }
    return true;
}

} // namespace

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
    // The parser passes bytes through unchecked: a file in another 8-bit encoding would be
    // read with its letters replaced, and saving would make that loss permanent.
    bool suspect = true; // texts converted from other encodings are always searched
    if (forceUtf8 || result.encoding == pugi::encoding_utf8) {
        suspect = false;
        const size_t bad = firstBadUtf8(data, size, suspect);
        suspect = suspect || bad < size; // the rest was not looked at
        if (bad < size && !forceUtf8) {
            error = QStringLiteral("not UTF-8 text at %1 (byte 0x%2): the file must be saved as UTF-8")
                        .arg(positionIn(data, size, ptrdiff_t(bad)),
                             QString::number(static_cast<unsigned char>(data[bad]), 16).toUpper());
            return false;
        }
    }
    return !suspect || checkCharacters(doc, data, size, error);
}

bool checkTreeDepth(const CCatalog::ItemMap& all, QString& why)
{
    // Each item's depth is found once and remembered, so long chains cost no more than
    // short ones. -1 marks an item on the chain being walked: meeting it again is a loop.
    std::unordered_map<const CCatalogItem*, int> depths;
    depths.reserve(all.size());
    std::vector<const CCatalogItem*> chain;
    for (const auto& [guid, item] : all) {
        chain.clear();
        int depth = -1;
        for (boost::shared_ptr<CCatalogItem> at = item; at; at = at->GetParentItem()) {
            const auto [known, added] = depths.emplace(at.get(), -1);
            if (!added) {
                if (known->second < 0) {
                    why = QStringLiteral("item %1 is its own ancestor").arg(at->GetGUID());
                    return false;
                }
                depth = known->second;
                break;
            }
            chain.push_back(at.get());
        }
        for (auto below = chain.rbegin(); below != chain.rend(); ++below) {
            depths[*below] = ++depth;
            if (depth > MaxItemDepth) {
                why = QStringLiteral("item %1 lies deeper than %2 levels below the top")
                          .arg((*below)->GetGUID()).arg(MaxItemDepth);
                return false;
            }
        }
    }
    return true;
}

} // namespace ZEVGis::Data::CatalogXml
