#pragma once

// Structural check of a document's element index, shared by the tests and the fuzz target:
// every record hangs in exactly one sibling chain, the links agree in both directions and every
// record lies inside the text. Returns an empty string when the index is consistent.

#include "xml/XmlDocument.h"

#include <QString>

#include <vector>

inline QString XmlIndexProblem(const CXmlDocument& doc)
{
    const int count = doc.RecordCount();
    const qsizetype textLength = doc.GetDocumentText().size();
    if (count < 1 || count > doc.RecordCapacity())
        return QStringLiteral("record count %1 outside capacity %2")
            .arg(count)
            .arg(doc.RecordCapacity());
    std::vector<char> seen(size_t(count), 0);
    int linked = 0;
    for (int p = 0; p < count; ++p)
    {
        const int first = doc.Record(p).firstChild;
        if (first < 0 || first >= count)
            return QStringLiteral("record %1: first child %2 out of range").arg(p).arg(first);
        int previous = 0;
        for (int c = first; c; c = doc.Record(c).nextSibling)
        {
            if (c < 0 || c >= count || seen[size_t(c)])
                return QStringLiteral("record %1: child %2 out of range or linked twice")
                    .arg(p)
                    .arg(c);
            seen[size_t(c)] = 1;
            ++linked;
            const ElementPos& e = doc.Record(c);
            if (e.parent != p)
                return QStringLiteral("record %1: parent %2, expected %3")
                    .arg(c)
                    .arg(e.parent)
                    .arg(p);
            if (e.Has(ElementPos::FirstSibling) != (c == first))
                return QStringLiteral("record %1: first-sibling flag wrong").arg(c);
            if (c != first && e.prevSibling != previous)
                return QStringLiteral("record %1: previous %2, expected %3")
                    .arg(c)
                    .arg(e.prevSibling)
                    .arg(previous);
            if (e.start < 0 || e.length < e.StartTagLength() ||
                e.start + qsizetype(e.length) > textLength)
                return QStringLiteral("record %1: outside the text").arg(c);
            if (doc.GetDocumentText().at(e.start) != u'<')
                return QStringLiteral("record %1: does not start at '<'").arg(c);
            previous = c;
        }
        if (first && doc.Record(first).prevSibling != previous)
            return QStringLiteral("record %1: first child does not point to the last").arg(p);
    }
    if (linked != count - 1)
        return QStringLiteral("%1 of %2 records linked").arg(linked).arg(count - 1);
    return QString();
}
