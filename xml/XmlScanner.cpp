#include "xml/XmlScanner.h"

#include <string>

XmlTokenPos CXmlScanner::otherMarkup(int32_t pos, char16_t next) const
{
    if (next == u'?')
        return terminated(XmlProcessingInstruction, pos, pos + 2, u"?>",
                          XmlScanError::UnterminatedProcessingInstruction);
    if (next != u'!')
        return incorrect(XmlScanError::IncorrectNameChar, pos);

    switch (m_s[pos + 2])
    {
    case u'-':
        if (m_s[pos + 3] != u'-')
            return incorrect(XmlScanError::IncorrectComment, pos);
        return terminated(XmlComment, pos, pos + 4, u"-->", XmlScanError::UnterminatedComment);
    case u'[':
        if (m_s[pos + 3] != u'C')
            return incorrect(XmlScanError::IncorrectTag, pos);
        return terminated(XmlCData, pos, pos + 4, u"]]>", XmlScanError::UnterminatedCData);
    case u'D':
        return doctype(pos);
    case u'E':
    case u'A':
    case u'N':
    {
        const int32_t close = closingOfQuoted(pos + 3);
        if (close < 0)
            return error(XmlScanError::UnterminatedDoctype, pos, endOfText(pos + 3));
        return token(XmlDoctype, pos, close + 1);
    }
    default:
        return incorrect(XmlScanError::IncorrectBang, pos);
    }
}

// A token ended by a terminator of several characters ("?>", "-->", "]]>"): it ends at a '>'
// preceded by the rest of the terminator, and only when the token is longer than the terminator.
XmlTokenPos CXmlScanner::terminated(int32_t type, int32_t pos, int32_t from,
                                    const char16_t* terminator, XmlScanError unterminated) const
{
    const int32_t termLength = int32_t(std::char_traits<char16_t>::length(terminator));
    for (int32_t i = from;; ++i)
    {
        const char16_t c = m_s[i];
        if (c == 0)
            return error(unterminated, pos, i);
        if (c != u'>' || i + 1 - pos <= termLength)
            continue;
        bool preceded = true;
        for (int32_t k = 0; k < termLength - 1 && preceded; ++k)
            preceded = m_s[i - termLength + 1 + k] == terminator[k];
        if (preceded)
            return token(type, pos, i + 1);
    }
}

// A DOCTYPE ends at a '>' outside quotes and outside the declarations nested in it.
XmlTokenPos CXmlScanner::doctype(int32_t pos) const
{
    int nested = 0;
    for (int32_t i = pos + 2;; ++i)
    {
        char16_t c = m_s[i];
        if (c == u'"' || c == u'\'')
        {
            const char16_t quote = c;
            do
            {
                c = m_s[++i];
            } while (c != quote && c != 0);
        }
        if (c == 0)
            return error(XmlScanError::UnterminatedDoctype, pos, i);
        if (c == u'<')
            ++nested;
        else if (c == u'>' && nested-- == 0)
            return token(XmlDoctype, pos, i + 1);
    }
}

// A bad tag: the error token runs through the next '>' or up to the next '<'.
XmlTokenPos CXmlScanner::incorrect(XmlScanError code, int32_t pos) const
{
    for (int32_t i = pos + 1;; ++i)
    {
        const char16_t c = m_s[i];
        if (c == u'>')
            return error(code, pos, i + 1);
        if (c == u'<')
            return error(code, pos, i);
        if (c == 0)
            return error(XmlScanError::UnterminatedTag, pos, i);
    }
}

QString CXmlScanner::Message(const XmlTokenPos& token)
{
    const char* text = nullptr;
    const char* label = nullptr;
    switch (token.error)
    {
    case XmlScanError::None:
        return QString();
    case XmlScanError::IncorrectComment:
        text = "Incorrect comment tag at offset %1";
        break;
    case XmlScanError::IncorrectTag:
        text = "Incorrect tag at offset %1";
        break;
    case XmlScanError::IncorrectBang:
        text = "Incorrect ! tag at offset %1";
        break;
    case XmlScanError::IncorrectNameChar:
        text = "Incorrect tag name character at offset %1";
        break;
    case XmlScanError::UnterminatedStartTag:
        label = "Element tag";
        break;
    case XmlScanError::UnterminatedEndTag:
        label = "Element end tag";
        break;
    case XmlScanError::UnterminatedCData:
        label = "CDATA Section";
        break;
    case XmlScanError::UnterminatedProcessingInstruction:
        label = "Processing instruction";
        break;
    case XmlScanError::UnterminatedComment:
        label = "Comment";
        break;
    case XmlScanError::UnterminatedDoctype:
        label = "Doctype";
        break;
    case XmlScanError::UnterminatedTag:
        label = "tag";
        break;
    }
    if (text)
        return QString::fromLatin1(text).arg(token.start);
    return QStringLiteral("%1 at offset %2 unterminated")
        .arg(QLatin1String(label))
        .arg(token.start);
}
