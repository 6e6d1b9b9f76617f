#pragma once

// The token scanner behind CXmlDocument. Internal to the xml library: the element loop calls it
// once per token, so the hot paths are inline and work on the raw UTF-16 text. The text must be
// terminated by a 0 character, which is where scanning stops (a 0 inside the text ends it too).

#include "xml/XmlCharSearch.h"

#include <QString>

#include <cstdint>

enum XmlTokenType : int32_t
{
    XmlEndTag = 0,
    XmlStartTag = 1,
    XmlText = 2,
    XmlWhitespace = 4,
    XmlCData = 8,
    XmlProcessingInstruction = 16,
    XmlComment = 32,
    XmlDoctype = 64, // also the markup declarations <!E..., <!A..., <!N...
    XmlError = -1,
    XmlEndOfText = -2,
};

enum class XmlScanError : uint8_t
{
    None,
    IncorrectComment,
    IncorrectTag,
    IncorrectBang,
    IncorrectNameChar,
    UnterminatedStartTag,
    UnterminatedEndTag,
    UnterminatedCData,
    UnterminatedProcessingInstruction,
    UnterminatedComment,
    UnterminatedDoctype,
    UnterminatedTag,
};

// One token. The tag name of a start or end tag is kept as a place in the text, and the message
// of an error token as a code, so that scanning allocates nothing.
struct XmlTokenPos
{
    static constexpr int32_t EmptyElement = 0x10000;

    int32_t type = XmlEndOfText;
    int32_t start = 0;
    int32_t length = 0;
    int32_t flags = 0;
    int32_t nameStart = 0;
    int32_t nameLength = 0;
    XmlScanError error = XmlScanError::None;

    int32_t End() const { return start + length; }
};

class CXmlScanner
{
public:
    // text[length] must be 0.
    CXmlScanner(const char16_t* text, int32_t length) : m_s(text), m_end(text + length) {}

    // The token that starts at offset pos.
    XmlTokenPos Next(int32_t pos) const
    {
        const char16_t c = m_s[pos];
        if (c == u'<')
            return markup(pos);
        if (c == 0)
            return token(XmlEndOfText, pos, pos);
        return textOrWhitespace(pos);
    }

    // The offset of the first character at or after pos that is not whitespace.
    int32_t SkipSpaces(int32_t pos) const
    {
        return int32_t(XmlCharSearch::SkipSpaces(m_s + pos, m_end) - m_s);
    }

    // The message of an error token, as the result text shows it.
    static QString Message(const XmlTokenPos& token);

    static bool IsSpace(char16_t c) { return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r'; }

private:
    static XmlTokenPos token(int32_t type, int32_t start, int32_t end)
    {
        XmlTokenPos t;
        t.type = type;
        t.start = start;
        t.length = end - start;
        return t;
    }
    static XmlTokenPos error(XmlScanError code, int32_t start, int32_t end)
    {
        XmlTokenPos t = token(XmlError, start, end);
        t.error = code;
        return t;
    }

    // A tag name ends at the first of " \t\n\r/>" (or the end of the text).
    int32_t nameEnd(int32_t i) const
    {
#if defined(__SSE2__)
        if (XmlFastPaths::Enabled && m_end - m_s - i >= 16)
            if (const unsigned stops = XmlCharSearch::NameStopCandidates(m_s + i))
            {
                const int32_t stop = i + __builtin_ctz(stops);
                if (m_s[stop] > u' ' || m_s[stop] == 0 || IsSpace(m_s[stop]))
                    return stop;
                i = stop; // a control character inside the name
            }
#endif
        for (;; ++i)
        {
            const char16_t c = m_s[i];
            if (c > u'>')
                continue; // every delimiter is at or below '>'
            if (c == 0 || c == u'>' || c == u'/' || IsSpace(c))
                return i;
        }
    }

    static bool isNameStart(char16_t c)
    {
        return c >= u'a' || (c >= u'A' && c <= u'Z') || c == u':' || c == u'_';
    }

    // The '>' that closes a start tag or a declaration; quoted values may hold '>'. -1 at the end.
    int32_t closingOfQuoted(int32_t i) const
    {
        using namespace XmlCharSearch;
        for (const char16_t* p = m_s + i;;)
        {
            p = FindAnyOrZero<u'>', u'"', u'\''>(p, m_end);
            const char16_t c = *p;
            if (c == u'>')
                return int32_t(p - m_s);
            if (c == 0)
                return -1;
            p = FindOrZero(p + 1, m_end, c);
            if (*p == 0)
                return -1;
            ++p;
        }
    }

    XmlTokenPos markup(int32_t pos) const
    {
        const char16_t c = m_s[pos + 1];
        if (isNameStart(c))
            return startTag(pos);
        if (c == u'/')
            return endTag(pos);
        return otherMarkup(pos, c);
    }

    XmlTokenPos startTag(int32_t pos) const
    {
        int32_t nameStop;
        int32_t close;
        if (!windowedStartTag(pos, nameStop, close))
        {
            nameStop = nameEnd(pos + 1);
            close = closingOfQuoted(nameStop);
            if (close < 0)
                return error(XmlScanError::UnterminatedStartTag, pos, endOfText(nameStop));
        }
        XmlTokenPos t = token(XmlStartTag, pos, close + 1);
        t.nameStart = pos + 1;
        t.nameLength = nameStop - pos - 1;
        if (m_s[close - 1] == u'/')
        {
            const char16_t before = m_s[close - 2];
            if (close - 1 == nameStop || IsSpace(before) || before == u'"' || before == u'\'')
                t.flags = XmlTokenPos::EmptyElement;
        }
        return t;
    }

    // The common start tag, 16 units at a time: name and closing '>' from bit masks, with the
    // double-quoted values found by a running parity of the quote marks. Gives up (false) on a
    // single quote or a 0 before the '>', a name longer than 16, or near the end of the text;
    // the plain searches then do the tag from its start.
    bool windowedStartTag(int32_t pos, int32_t& nameStop, int32_t& close) const
    {
#if defined(__SSE2__)
        using namespace XmlCharSearch;
        const char16_t* p = m_s + pos + 1;
        if (!XmlFastPaths::Enabled || m_end - p < 16)
            return false;
        const unsigned stops = NameStopCandidates(p);
        if (!stops)
            return false;
        const int nameLength = __builtin_ctz(stops);
        const char16_t stop = p[nameLength];
        if (stop <= u' ' && stop != 0 && !IsSpace(stop))
            return false;
        TagWindow w = LoadTagWindow(p);
        unsigned from = (0xFFFFu << nameLength) & 0xFFFF;
        unsigned inside = 0;
        for (;;)
        {
            if ((w.greater | w.otherStop) & from)
            {
                const unsigned quoted = InsideQuotes(w.doubleQuote & from, inside);
                const unsigned closing = w.greater & from & ~quoted;
                const unsigned upToClosing =
                    closing ? ((closing & (0u - closing)) << 1) - 1 : 0xFFFF;
                if (w.otherStop & from & upToClosing)
                    return false;
                if (closing)
                {
                    nameStop = pos + 1 + nameLength;
                    close = int32_t(p - m_s) + __builtin_ctz(closing);
                    return true;
                }
                inside = (quoted >> 15) & 1;
            }
            else
            {
                // Nothing here can end the tag: only whether a value is open carries over.
                inside ^= unsigned(__builtin_parity(w.doubleQuote & from));
            }
            p += 16;
            if (m_end - p < 16)
                return false;
            w = LoadTagWindow(p);
            from = 0xFFFF;
        }
#else
        (void)pos, (void)nameStop, (void)close;
        return false;
#endif
    }

    XmlTokenPos endTag(int32_t pos) const
    {
        const int32_t nameStop = nameEnd(pos + 2);
        int32_t i = nameStop;
        if (m_s[i] != u'>')
        {
            i = int32_t(XmlCharSearch::FindAnyOrZero<u'>'>(m_s + i, m_end) - m_s);
            if (m_s[i] == 0)
                return error(XmlScanError::UnterminatedEndTag, pos, i);
        }
        XmlTokenPos t = token(XmlEndTag, pos, i + 1);
        t.nameStart = pos + 2;
        t.nameLength = nameStop - pos - 2;
        return t;
    }

    XmlTokenPos textOrWhitespace(int32_t pos) const
    {
        const char16_t* p = XmlCharSearch::SkipSpaces(m_s + pos, m_end);
        if (*p == u'<' || *p == 0)
            return token(XmlWhitespace, pos, int32_t(p - m_s));
        // Text runs to the next '<'; a '>' in it ends it just after that '>'.
        p = XmlCharSearch::FindAnyOrZero<u'<', u'>'>(p, m_end);
        const int32_t i = int32_t(p - m_s);
        return *p == u'>' ? token(XmlText, pos, i + 1) : token(XmlText, pos, i);
    }

    int32_t endOfText(int32_t i) const
    {
        return int32_t(XmlCharSearch::FindAnyOrZero<>(m_s + i, m_end) - m_s);
    }

    // Comments, CDATA sections, processing instructions, DOCTYPE, declarations and bad tags.
    XmlTokenPos otherMarkup(int32_t pos, char16_t next) const;
    XmlTokenPos terminated(int32_t type, int32_t pos, int32_t from, const char16_t* terminator,
                           XmlScanError unterminated) const;
    XmlTokenPos doctype(int32_t pos) const;
    XmlTokenPos incorrect(XmlScanError code, int32_t pos) const;

    const char16_t* m_s;
    const char16_t* m_end;
};
