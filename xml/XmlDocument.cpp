#include "xml/XmlDocument.h"

#include "xml/Utf8Decoder.h"

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <limits>
#include <new>

#include <sys/mman.h>
#include <sys/stat.h>

namespace
{
QString systemError(int code)
{
    return QString::fromLocal8Bit(std::strerror(code));
}

// The whole file as UTF-16 text. The file is mapped when it can be (no copy of its bytes),
// else read. Returns 0 or an errno value.
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

    void* mapped = mmap(nullptr, size_t(size), PROT_READ, MAP_PRIVATE, fileno(file), 0);
    if (mapped != MAP_FAILED)
    {
        madvise(mapped, size_t(size), MADV_SEQUENTIAL);
        text = DecodeUtf8(static_cast<const char*>(mapped), qsizetype(size));
        munmap(mapped, size_t(size));
        byteCount = qsizetype(size);
        return 0;
    }
    QByteArray bytes(qsizetype(size), Qt::Uninitialized);
    const size_t got = std::fread(bytes.data(), 1, size_t(size), file);
    if (got < size_t(size) && std::ferror(file))
        return errno ? errno : EIO;
    text = DecodeUtf8(bytes.constData(), qsizetype(got));
    byteCount = qsizetype(got);
    return 0;
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
    reserveRecords(int32_t(std::min<int64_t>(used + used / 2, std::numeric_limits<int32_t>::max())));
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
