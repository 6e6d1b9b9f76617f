#pragma once

#include <QString>
#include <QStringList>

#include <cstdint>

// One element of the index: where the element lies in the document text and how it hangs in
// the tree. Eight plain 32-bit fields, so that a large document costs 32 bytes per element.
struct ElementPos
{
    enum Flags : int32_t
    {
        LevelMask = 0xFFFF,
        FirstSibling = 0x80000,
        Unended = 0x100000,
        HasError = 0x200000,
        IllFormed = 0x800000,
    };
    // Bit 20 is not part of the start-tag length; both lengths stay as the mask cuts them.
    static constexpr int32_t StartTagMask = 0x2FFFFF;
    static constexpr int EndTagShift = 22;

    int32_t start;      // offset of the '<' of the start tag
    int32_t length;     // through the '>' of the end tag, or the start tag alone
    int32_t tagLengths; // start-tag length, end-tag length << 22
    int32_t flags;      // level in the low 16 bits, Flags above
    int32_t parent;
    int32_t firstChild;
    int32_t nextSibling;
    int32_t prevSibling; // on a first child: the last child of the same parent

    int StartTagLength() const { return tagLengths & StartTagMask; }
    int EndTagLength() const { return int(uint32_t(tagLengths) >> EndTagShift); }
    int Level() const { return flags & LevelMask; }
    bool Has(Flags flag) const { return (flags & flag) != 0; }
};
static_assert(sizeof(ElementPos) == 32);

// An XML document held as one UTF-16 text with an index of its elements. Parsing decides
// whether the text is well formed and keeps the first error in the result text; it builds no
// node objects, only the index. Offsets are UTF-16 code units from the start of the text.
class CXmlDocument
{
public:
    static constexpr unsigned IgnoreCase = 8; // end tags match start tags regardless of case

    CXmlDocument();
    ~CXmlDocument();
    CXmlDocument(const CXmlDocument&) = delete;
    CXmlDocument& operator=(const CXmlDocument&) = delete;

    // Replaces the text (a null string is the empty text), empties the result and parses.
    bool SetDocumentText(const QString& text);
    // Reads a UTF-8 file and parses it. When the file cannot be read, returns false with the
    // system's error text as the result and leaves the document text as it was.
    bool LoadFile(const QString& path);
    // Indexes the text; true exactly when it is well formed.
    bool Parse();

    QString GetDocumentText() const { return m_text; }
    QString GetResult() const { return m_result; }
    void SetDocFlags(unsigned flags) { m_docFlags = flags; }
    unsigned GetDocFlags() const { return m_docFlags; }

    // Read-only view of the index: records 0 .. RecordCount() - 1, record 0 being the document.
    int RecordCount() const { return m_nextFreeRecord; }
    int RecordCapacity() const { return m_recordCapacity; }
    const ElementPos& Record(int index) const { return record(index); }

private:
    class ElementLoop;

    ElementPos& record(int index) const
    {
        return m_segments[index >> SegmentShift][index & (SegmentSize - 1)];
    }
    void resetPositions();
    void reserveRecords(int32_t wanted);
    void growRecords();
    void resizeSegment(int segment, int32_t size);
    void growSegmentTable(int segmentsNeeded);
    int parseElements(int parentRecord);
    QString finishParse(int firstElement);

    static constexpr int SegmentShift = 16;
    static constexpr int SegmentSize = 1 << SegmentShift;

    QString m_text;
    QString m_result;
    // Current position and a saved position in the index, for the navigation the index serves.
    int32_t m_posParent = 0;
    int32_t m_pos = 0;
    int32_t m_posChild = 0;
    int32_t m_nextFreeRecord = 1;
    int32_t m_positionCounter = 0;
    int32_t m_savedParent = 0;
    int32_t m_saved = 0;
    int32_t m_savedChild = 0;
    unsigned m_docFlags = 0;
    QStringList m_savedPositionNames;
    ElementPos** m_segments = nullptr;
    int32_t m_recordCapacity = 0;
    int32_t m_segmentTableCapacity = 0;
};
