#pragma once

// Reading and writing the catalog file format (README, "File formats"). Internal to the
// catalog library: the catalog, the registry and the tools' validation use it.

#include "catalog/Catalog.h"

#include <QLoggingCategory>
#include <memory>
#include <string>
#include <unordered_map>
#include <pugixml.hpp>

Q_DECLARE_LOGGING_CATEGORY(lcCatalog)

namespace ZEVGis::Data::CatalogXml
{

// Element and attribute names of the format.
namespace Names
{
inline constexpr char catalog[] = "catalog";
inline constexpr char item[] = "i";
inline constexpr char category[] = "c";
inline constexpr char property[] = "p";
inline constexpr char choice[] = "ch";
} // namespace Names

inline constexpr int FormatVersion = 1;
// Nesting deeper than this is taken for a broken (or hostile) file, not a catalog.
inline constexpr int MaxItemDepth = 256;

// Turns pugixml's UTF-8 texts into QStrings, sharing one QString among equal short texts
// (tags, category and type names, template names, repeated values), so a big catalog
// does not hold a million copies of "CROSS_SECTION".
class StringPool;

// Builds catalog items from <i> elements.
class ItemReader
{
public:
    ItemReader();
    ~ItemReader();

    // Reads one <i> element (with nested sub-items when `withSubItems`). On failure returns
    // an empty pointer and error() says why (with line and column).
    boost::shared_ptr<CCatalogItem> readItem(pugi::xml_node node, bool withSubItems);
    // Reads all <i> children of `parentNode` into the maps (all items, root items).
    bool readItems(pugi::xml_node parentNode, CCatalog::ItemMap& all, CCatalog::ItemMap& roots);

    QString error() const { return m_error; }
    void clearError() { m_error.clear(); }
    // Where a node starts in the parsed text, as "line L, column C".
    void setText(const char* text, size_t size) { m_text = text; m_size = size; }
    QString position(ptrdiff_t offset) const;
    QString text(const char* utf8);

private:
    struct Collected
    {
        QString guid;
        boost::shared_ptr<CCatalogItem> item;
        ptrdiff_t offset;
    };

    bool readItemInto(pugi::xml_node node, const boost::shared_ptr<CCatalogItem>& item);
    bool readAttributes(pugi::xml_node node, CCatalogItem& target);
    bool readProperties(pugi::xml_node node, CCatalogItem& item);
    bool readProperty(pugi::xml_node node, size_t slot, CPropertyEx& property,
                      const CCatalogItem& item);
    // Moves the items read so far into `all`; false when two share a GUID.
    bool collectedInto(CCatalog::ItemMap& all);
    bool fail(pugi::xml_node node, const QString& why);
    bool failAt(ptrdiff_t offset, const QString& why);
    CPropertyEx::ExtraPtr extra(const char* caption, const char* picture, bool readOnly,
                                pugi::xml_node choiceNode);

    std::unique_ptr<StringPool> m_pool;
    const QString m_nameTag;
    QString m_error;
    const char* m_text = nullptr;
    size_t m_size = 0;
    std::vector<std::pair<boost::shared_ptr<CCatalogItem>, QString>> m_pendingParents;
    // Items with sub-items: every item read, registered by GUID at the end.
    bool m_withSubItems = false;
    std::vector<Collected> m_collected;
    int m_depth = 0;
    // The raw name of the item being read, to spot the property that repeats it.
    const char* m_itemName = "";
    std::vector<pugi::xml_node> m_categoryNodes;
    std::vector<pugi::xml_node> m_propertyNodes;
    std::string m_extraKey;
    std::unordered_map<std::string, CPropertyEx::ExtraPtr> m_extras;
};

// False, with the reason, when a chain of parents loops or goes deeper than MaxItemDepth:
// such a tree could not be shown, walked or written back.
bool checkTreeDepth(const CCatalog::ItemMap& all, QString& why);

// False, with the reason, when a catalog could not be written so that it reads back as
// the same catalog: a tree too deep (checkTreeDepth) or a GUID holding a character XML 1.0
// cannot hold (the writer leaves such characters out, which could make two GUIDs one).
bool checkWritable(const CCatalog::ItemMap& all, QString& why);
// True when `text` holds a character XML 1.0 cannot hold (most control characters, lone
// surrogates, U+FFFE, U+FFFF).
bool holdsNonXmlCharacter(QStringView text);

// Parses `size` bytes of XML. `error` gets pugixml's message with line and column, or
// names a character XML 1.0 cannot hold (raw or as a reference) with its line and column.
bool parseDocument(pugi::xml_document& doc, const char* data, size_t size, bool forceUtf8,
                   QString& error);
QString positionIn(const char* text, size_t size, ptrdiff_t offset);
// False, with the reason, when the root's "format" attribute is not a version this program
// reads (absent means 1): a later file is refused rather than misread.
bool readableFormat(pugi::xml_node root, QString& why);

// A small XML writer straight into UTF-8 bytes: QXmlStreamWriter takes over twice as long
// for a 100,000-entry catalog (README, "Catalog library benchmark"). One element per line,
// indented by depth.
class XmlOut
{
public:
    void reserve(size_t bytes) { m_out.reserve(bytes); }
    void declaration();
    void start(const char* name);
    void attribute(const char* name, QStringView value);
    void attribute(const char* name, const QString& value) { attribute(name, QStringView(value)); }
    void attribute(const char* name, const char* latin1);
    void attribute(const char* name, int value);
    void end();
    QByteArray take();

private:
    void closeStartTag();
    void escaped(QStringView text);

    std::string m_out;
    std::vector<const char*> m_open;
    bool m_startOpen = false;
};

// Writes one item as <i> (with its sub-items nested, in display order, when asked).
void writeItem(XmlOut& out, CCatalogItem& item, bool withSubItems, bool writeParentGuid);
// The whole catalog file.
QByteArray writeCatalog(const CCatalog& catalog);

} // namespace ZEVGis::Data::CatalogXml
