#include "xml/XmlDocument.h"

#include "xml/Utf8Decoder.h"

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>
#include <new>

#include <sys/stat.h>

namespace
{
QString systemError(int code)
{
    return QString::fromLocal8Bit(std::strerror(code));
}

// Decodes the file block by block into a text of the largest size it can have, so that its
// bytes are never held whole; a sequence cut by a block's end waits for the next block.
// Returns 0 or an errno value.
int decodeFile(FILE* file, qsizetype size, QString& text, qsizetype& byteCount)
{
    constexpr size_t Block = 256 * 1024;
    text = QString(size, Qt::Uninitialized);
    char16_t* const begin = reinterpret_cast<char16_t*>(text.data());
    AdviseLargePages(begin, size_t(size) * sizeof(char16_t));
    char16_t* out = begin;
    std::unique_ptr<char[]> buffer(new char[Block + 4]);
    size_t carried = 0;
    byteCount = 0;
    for (;;)
    {
        // Never more than the size taken at the start: the text has room for no more.
        const size_t wanted = std::min<size_t>(Block, size_t(size - byteCount));
        const size_t got = wanted ? std::fread(buffer.get() + carried, 1, wanted, file) : 0;
        if (got < wanted && std::ferror(file))
            return errno ? errno : EIO;
        byteCount += qsizetype(got);
        const size_t held = carried + got;
        const bool last = got < wanted || byteCount == size;
        const size_t complete = last ? held : CompleteUtf8Prefix(buffer.get(), held);
        out = DecodeUtf8(buffer.get(), buffer.get() + complete, out);
        carried = held - complete;
        std::memmove(buffer.get(), buffer.get() + complete, carried);
        if (last)
            break;
    }
    text.truncate(out - begin);
    if (text.capacity() - text.size() > text.size() / 8)
        text.squeeze(); // mostly multi-byte text: give back what the guess overshot
    return 0;
}

// The whole file as UTF-16 text. Returns 0 or an errno value.
int readUtf8File(FILE* file, QString& text, qsizetype& byteCount)
{
    struct stat info;
    if (fstat(fileno(file), &info) == 0 && S_ISDIR(info.st_mode))
        return EISDIR;
    if (fseeko(file, 0, SEEK_END) != 0)
        return errno;
    const off_t size = ftello(file);
    if (size < 0 || fseeko(file, 0, SEEK_SET) != 0)
        return errno;
    // Offsets in the index are 32-bit.
    if (size >= std::numeric_limits<int32_t>::max())
        return EFBIG;
    byteCount = 0;
    text = QString();
    if (size == 0)
        return 0;
    return decodeFile(file, qsizetype(size), text, byteCount);
}
} // namespace

CXmlDocument::CXmlDocument()
{
    Parse();
}

CXmlDocument::~CXmlDocument()
{
    const int segments = m_recordCapacity ? ((m_recordCapacity - 1) >> SegmentShift) + 1 : 0;
    for (int i = 0; i < segments; ++i)
        delete[] m_segments[i];
    delete[] m_segments;
}

bool CXmlDocument::SetDocumentText(const QString& text)
{
    m_text = text;
    m_result.clear();
    return Parse();
}

bool CXmlDocument::LoadFile(const QString& path)
{
    FILE* file = std::fopen(QFile::encodeName(path).constData(), "rb");
    if (!file)
    {
        m_result = systemError(errno);
        return false;
    }
    QString text;
    qsizetype byteCount = 0;
    int failure = 0;
    try
    {
        failure = readUtf8File(file, text, byteCount);
    }
    catch (const std::bad_alloc&)
    {
        failure = ENOMEM;
    }
    std::fclose(file);
    if (failure)
    {
        m_result = systemError(failure);
        return false;
    }
    m_text = text;
    m_result = QStringLiteral("%1 bytes to %2 wide chars").arg(byteCount).arg(m_text.size());
    return Parse();
}

bool CXmlDocument::Parse()
{
    const QString loadReport = m_result;
    resetPositions();
    m_savedPositionNames.clear();
    m_nextFreeRecord = 1;

    QString message;
    bool wellFormed = false;
    try
    {
        reserveRecords(int32_t(
            std::min<qsizetype>(m_text.size() / 64 + 8, std::numeric_limits<int32_t>::max())));
        record(0) = ElementPos{};
        m_positionCounter = 0;
        if (m_text.isEmpty())
            message = QStringLiteral("Empty document");
        else if (m_text.size() >= std::numeric_limits<int32_t>::max())
            message = systemError(EOVERFLOW);
        else
            message = finishParse(parseElements(0));
        const ElementPos& document = record(0);
        wellFormed = !document.Has(ElementPos::IllFormed) && document.firstChild != 0 &&
                     record(document.firstChild).nextSibling == 0;
    }
    catch (const std::bad_alloc&)
    {
        message = systemError(ENOMEM);
        m_nextFreeRecord = std::min(m_nextFreeRecord, m_recordCapacity);
    }
    resetPositions();

    if (loadReport.isEmpty())
        m_result = message;
    else if (message.isEmpty())
        m_result = loadReport;
    else
        m_result = loadReport + QStringLiteral(", ") + message;
    return wellFormed;
}

// After the element loop: the root decides the message, over any error the loop found.
QString CXmlDocument::finishParse(int firstElement)
{
    ElementPos& document = record(0);
    document.length = int32_t(m_text.size());
    if (!firstElement)
        return QStringLiteral("No root element");
    document.firstChild = firstElement;
    if (record(firstElement).nextSibling)
        return QStringLiteral("Root element has sibling");
    return m_result;
}

void CXmlDocument::resetPositions()
{
    m_posParent = m_pos = m_posChild = 0;
    m_positionCounter = 0;
    m_savedParent = m_saved = m_savedChild = 0;
}

// Grows the record array to `wanted` records, but never past the end of the next segment: full
// segments are never reallocated, so a large document is copied at most once per segment.
void CXmlDocument::reserveRecords(int32_t wanted)
{
    if (wanted <= m_recordCapacity)
        return;
    const int lastSegment = m_recordCapacity ? (m_recordCapacity - 1) >> SegmentShift : -1;
    const int64_t limit = int64_t(lastSegment + 2) * SegmentSize;
    const int32_t capacity = int32_t(std::min<int64_t>(wanted, limit));
    const int newLastSegment = (capacity - 1) >> SegmentShift;
    growSegmentTable(newLastSegment + 1);

    if (newLastSegment == lastSegment)
    {
        resizeSegment(lastSegment, capacity - lastSegment * SegmentSize);
    }
    else
    {
        if (lastSegment >= 0 && m_recordCapacity % SegmentSize)
            resizeSegment(lastSegment, SegmentSize);
        m_segments[newLastSegment] = new ElementPos[capacity - newLastSegment * SegmentSize];
    }
    m_recordCapacity = capacity;
}

void CXmlDocument::growRecords()
{
    const int64_t used = m_nextFreeRecord;
    reserveRecords(
        int32_t(std::min<int64_t>(used + used / 2, std::numeric_limits<int32_t>::max())));
}

// Reallocates a partial segment, copying the records in use.
void CXmlDocument::resizeSegment(int segment, int32_t size)
{
    const int32_t base = segment * SegmentSize;
    const int32_t inUse = std::clamp(m_nextFreeRecord - base, 0, size);
    ElementPos* grown = new ElementPos[size];
    std::copy_n(m_segments[segment], inUse, grown);
    delete[] m_segments[segment];
    m_segments[segment] = grown;
}

void CXmlDocument::growSegmentTable(int segmentsNeeded)
{
    if (segmentsNeeded <= m_segmentTableCapacity)
        return;
    const int capacity = 2 * segmentsNeeded + 4;
    ElementPos** table = new ElementPos*[capacity]();
    if (m_segments)
        std::copy_n(m_segments, m_segmentTableCapacity, table);
    delete[] m_segments;
    m_segments = table;
    m_segmentTableCapacity = capacity;
}
