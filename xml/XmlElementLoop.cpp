// The element loop: walks the tokens of the text once and builds the index of its elements.
// Open elements live on an explicit stack, never on the call stack, so nesting depth costs
// 40 bytes a level and nothing else.

#include "xml/XmlDocument.h"
#include "xml/XmlFastPaths.h"
#include "xml/XmlScanner.h"

#include <QStringView>

#include <algorithm>
#include <memory>

class CXmlDocument::ElementLoop
{
public:
    ElementLoop(CXmlDocument& doc, int parentRecord)
        : m_doc(doc), m_text(reinterpret_cast<const char16_t*>(doc.m_text.utf16())),
          m_parent(parentRecord), m_parentLevel(doc.record(parentRecord).Level()),
          m_ignoreCase(doc.m_docFlags & IgnoreCase)
    {
        const int32_t first = doc.record(parentRecord).firstChild;
        m_parentChildren = {first, first ? doc.record(first).prevSibling : 0};
    }

    int Run();

private:
    // First and last child of a parent, so that appending needs not reach back to its records.
    struct Children
    {
        int32_t first;
        int32_t last;
    };
    struct OpenElement
    {
        XmlTokenPos token;
        int32_t record;
        Children children;
    };
    enum class Unended
    {
        Mismatch,
        EndOfText
    };

    int innermost() const { return m_depth ? m_stack[m_depth - 1].record : m_parent; }
    QStringView name(int32_t start, int32_t length) const
    {
        return QStringView(m_text + start, length);
    }
    void setMessage(const QString& message)
    {
        if (m_doc.m_result.isEmpty())
            m_doc.m_result = message;
    }
    void markError()
    {
        m_doc.record(0).flags |= ElementPos::IllFormed;
        m_doc.record(innermost()).flags |= ElementPos::HasError;
    }

    void startElement(const XmlTokenPos& token);
    void appendChild(int32_t child);
    void push(const XmlTokenPos& token, int32_t record);
    void endElement(const XmlTokenPos& token);
    int findOpen(const XmlTokenPos& endTag);
    void popTo(int depth)
    {
        m_depth = depth;
        m_miss.depth = std::min(m_miss.depth, depth);
    }
    void closeUnended(int from, Unended reason, const XmlTokenPos* endTag);
    QString unendedMessage(Unended reason, const XmlTokenPos* endTag) const;

    CXmlDocument& m_doc;
    const char16_t* m_text;
    const int m_parent;
    const int m_parentLevel;
    const bool m_ignoreCase;
    Children m_parentChildren;
    int m_first = 0;
    std::unique_ptr<OpenElement[]> m_stack;
    int m_depth = 0;
    int m_stackCapacity = 0;
    // The last end-tag name that matched no open element, and the depth searched for it.
    struct
    {
        int32_t start = 0;
        int32_t length = -1;
        int depth = 0;
    } m_miss;
};

int CXmlDocument::parseElements(int parentRecord)
{
    ElementLoop loop(*this, parentRecord);
    return loop.Run();
}

// Indexes every element up to the end of the text and returns the first one (0 if none).
// Errors never stop the loop; only the first message is kept.
int CXmlDocument::ElementLoop::Run()
{
    m_doc.m_result.clear();
    m_stack.reset(new OpenElement[6]);
    m_stackCapacity = 6;
    const CXmlScanner scanner(m_text, int32_t(m_doc.m_text.size()));
    for (int32_t pos = 0;;)
    {
        // Whitespace makes no token of its own here: what follows it is scanned at once.
        if (CXmlScanner::IsSpace(m_text[pos]))
            pos = scanner.SkipSpaces(pos);
        const XmlTokenPos token = scanner.Next(pos);
        pos = token.End();
        switch (token.type)
        {
        case XmlStartTag:
            startElement(token);
            break;
        case XmlEndTag:
            endElement(token);
            break;
        case XmlError:
            markError();
            if (m_doc.m_result.isEmpty())
                m_doc.m_result = CXmlScanner::Message(token);
            break;
        case XmlEndOfText:
            if (m_depth)
                closeUnended(0, Unended::EndOfText, nullptr);
            return m_first;
        default:
            break; // text, whitespace, comments and the like make no record
        }
    }
}

void CXmlDocument::ElementLoop::startElement(const XmlTokenPos& token)
{
    if (m_doc.m_nextFreeRecord == m_doc.m_recordCapacity)
        m_doc.growRecords();
    const int32_t index = m_doc.m_nextFreeRecord++;
    if (!m_first)
        m_first = index;
    appendChild(index);

    ElementPos& element = m_doc.record(index);
    element.flags |= (m_parentLevel + m_depth) & ElementPos::LevelMask;
    element.firstChild = 0;
    element.nextSibling = 0;
    element.start = token.start;
    element.length = token.length;
    element.tagLengths = token.length & ElementPos::StartTagMask;
    if (!(token.flags & XmlTokenPos::EmptyElement))
        push(token, index);
}

// Links a new record as the last child of the innermost open element (or of the loop's parent)
// and sets its parent, previous sibling and first-sibling flag. The first child's
// previous-sibling link always names the last child.
void CXmlDocument::ElementLoop::appendChild(int32_t child)
{
    const int32_t parent = innermost();
    Children& children = m_depth ? m_stack[m_depth - 1].children : m_parentChildren;
    ElementPos& childPos = m_doc.record(child);
    childPos.parent = parent;
    if (!children.first)
    {
        m_doc.record(parent).firstChild = child;
        childPos.prevSibling = child;
        childPos.flags = ElementPos::FirstSibling;
        children.first = child;
    }
    else
    {
        m_doc.record(children.last).nextSibling = child;
        childPos.prevSibling = children.last;
        m_doc.record(children.first).prevSibling = child;
        childPos.flags = 0;
    }
    children.last = child;
}

void CXmlDocument::ElementLoop::push(const XmlTokenPos& token, int32_t record)
{
    if (m_depth == m_stackCapacity)
    {
        const int capacity = 2 * m_stackCapacity + 6;
        std::unique_ptr<OpenElement[]> grown(new OpenElement[capacity]);
        std::copy_n(m_stack.get(), m_depth, grown.get());
        m_stack = std::move(grown);
        m_stackCapacity = capacity;
    }
    m_stack[m_depth++] = OpenElement{token, record, {0, 0}};
}

void CXmlDocument::ElementLoop::endElement(const XmlTokenPos& token)
{
    const int match = findOpen(token);
    if (match < 0)
    {
        markError();
        if (m_doc.m_result.isEmpty())
            m_doc.m_result =
                QStringLiteral("No start tag for end tag '%1' at offset %2")
                    .arg(name(token.nameStart, token.nameLength), QString::number(token.start));
        return;
    }
    if (match < m_depth - 1)
        closeUnended(match + 1, Unended::Mismatch, &token);

    ElementPos& element = m_doc.record(m_stack[match].record);
    element.length = token.End() - element.start;
    element.tagLengths = int32_t((uint32_t(element.tagLengths) & ElementPos::StartTagMask) |
                                 (uint32_t(token.length) << ElementPos::EndTagShift));
    popTo(match);
}

// The open element, innermost first, that an end tag closes: its name begins with the end
// tag's name and ends there or goes on with one of " =/[]".
int CXmlDocument::ElementLoop::findOpen(const XmlTokenPos& endTag)
{
    const int32_t length = endTag.nameLength;
    const QStringView wanted = name(endTag.nameStart, length);
    // A name that matched nothing before matches nothing below the depth searched then: a run
    // of stray end tags under deep nesting stays linear.
    const bool missedBefore = XmlFastPaths::Enabled && m_miss.length == length &&
                              std::equal(wanted.begin(), wanted.end(), m_text + m_miss.start);
    const int lowest = missedBefore ? m_miss.depth : 0;
    m_miss = {endTag.nameStart, length, m_depth};
    for (int i = m_depth - 1; i >= lowest; --i)
    {
        const XmlTokenPos& open = m_stack[i].token;
        if (open.nameLength < length)
            continue;
        if (open.nameLength > length)
        {
            const char16_t next = m_text[open.nameStart + length];
            if (next != u' ' && next != u'=' && next != u'/' && next != u'[' && next != u']')
                continue;
        }
        if (m_ignoreCase ? name(open.nameStart, length).compare(wanted, Qt::CaseInsensitive) == 0
                         : std::equal(wanted.begin(), wanted.end(), m_text + open.nameStart))
        {
            m_miss.length = -1;
            return i;
        }
    }
    return -1;
}

// Closes the open elements from stack entry `from` inwards as unended. Each keeps only its
// start tag and hands its children up: they follow it as siblings, in order, so that in the
// end all of them hang under the parent of the outermost one. Every record is re-linked once,
// which keeps a deeply nested unended document linear.
void CXmlDocument::ElementLoop::closeUnended(int from, Unended reason, const XmlTokenPos* endTag)
{
    setMessage(unendedMessage(reason, endTag));
    const int32_t parent = from ? m_stack[from - 1].record : m_parent;
    m_doc.record(0).flags |= ElementPos::IllFormed;

    const int32_t innermostRecord = m_stack[m_depth - 1].record;
    const int32_t innermostChild = m_doc.record(innermostRecord).firstChild;
    const int32_t lastOfChain =
        innermostChild ? m_doc.record(innermostChild).prevSibling : innermostRecord;

    bool errorMovesUp = false;
    int32_t closedChild = 0; // the open child closed just before, last of this element's own
    for (int k = m_depth - 1; k >= from; --k)
    {
        const int32_t index = m_stack[k].record;
        ElementPos& element = m_doc.record(index);
        element.tagLengths &= ElementPos::StartTagMask;
        element.length = element.tagLengths;
        element.flags |= ElementPos::Unended;
        if (element.flags & ElementPos::HasError)
        {
            element.flags &= ~ElementPos::HasError;
            errorMovesUp = true;
        }
        if (const int32_t child = element.firstChild)
        {
            for (int32_t i = child;;)
            {
                ElementPos& lifted = m_doc.record(i);
                lifted.parent = parent;
                if (i == closedChild || !lifted.nextSibling)
                    break;
                i = lifted.nextSibling;
            }
            ElementPos& first = m_doc.record(child);
            first.prevSibling = index;
            first.flags &= ~ElementPos::FirstSibling;
            element.nextSibling = child;
            element.firstChild = 0;
        }
        closedChild = index;
    }
    m_doc.record(m_doc.record(parent).firstChild).prevSibling = lastOfChain;
    (from ? m_stack[from - 1].children : m_parentChildren).last = lastOfChain;
    if (errorMovesUp)
        m_doc.record(parent).flags |= ElementPos::HasError;
    popTo(from);
}

QString CXmlDocument::ElementLoop::unendedMessage(Unended reason, const XmlTokenPos* endTag) const
{
    if (!m_doc.m_result.isEmpty())
        return QString();
    const XmlTokenPos& open = m_stack[m_depth - 1].token;
    const QString openName = name(open.nameStart, open.nameLength).toString();
    if (reason == Unended::EndOfText)
        return QStringLiteral("Element '%1' at offset %2 not ended")
            .arg(openName, QString::number(open.start));
    return QStringLiteral("End tag '%1' at offset %2 does not match start tag '%3' at offset %4")
        .arg(name(endTag->nameStart, endTag->nameLength).toString(),
             QString::number(endTag->start + 1), openName, QString::number(open.start));
}
