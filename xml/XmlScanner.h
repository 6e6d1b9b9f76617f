#pragma once

// The token scanner behind CXmlDocument. Internal to the xml library: the element loop calls it
// once per token, so the hot paths are inline and work on the raw UTF-16 text. The text must be
// terminated by a 0 character, which is where scanning stops (a 0 inside the text ends it too).

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
    explicit CXmlScanner(const char16_t* text) : m_s(text) {}

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
        for (;; ++i)
        {
            char16_t c = m_s[i];
            if (c == u'>')
                return i;
            if (c == u'"' || c == u'\'')
            {
                const char16_t quote = c;
                do
                {
                    c = m_s[++i];
                    if (c == 0)
                        return -1;
                } while (c != quote);
            }
            else if (c == 0)
                return -1;
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
        const int32_t nameStop = nameEnd(pos + 1);
        const int32_t close = closingOfQuoted(nameStop);
        if (close < 0)
            return error(XmlScanError::UnterminatedStartTag, pos, endOfText(nameStop));
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

    XmlTokenPos endTag(int32_t pos) const
    {
        const int32_t nameStop = nameEnd(pos + 2);
        int32_t i = nameStop;
        while (m_s[i] != u'>')
        {
            if (m_s[i] == 0)
                return error(XmlScanError::UnterminatedEndTag, pos, i);
            ++i;
        }
        XmlTokenPos t = token(XmlEndTag, pos, i + 1);
        t.nameStart = pos + 2;
        t.nameLength = nameStop - pos - 2;
        return t;
    }

    XmlTokenPos textOrWhitespace(int32_t pos) const
    {
        int32_t i = pos;
        while (IsSpace(m_s[i]))
            ++i;
        if (m_s[i] == u'<' || m_s[i] == 0)
            return token(XmlWhitespace, pos, i);
        // Text runs to the next '<'; a '>' in it ends it just after that '>'.
        for (;; ++i)
        {
            const char16_t c = m_s[i];
            if (c > u'>')
                continue;
            if (c == u'<' || c == 0)
                return token(XmlText, pos, i);
            if (c == u'>')
                return token(XmlText, pos, i + 1);
        }
    }

    int32_t endOfText(int32_t i) const
    {
        while (m_s[i] != 0)
            ++i;
        return i;
    }

    // Comments, CDATA sections, processing instructions, DOCTYPE, declarations and bad tags.
    XmlTokenPos otherMarkup(int32_t pos, char16_t next) const;
    XmlTokenPos terminated(int32_t type, int32_t pos, int32_t from, const char16_t* terminator,
                           XmlScanError unterminated) const;
    XmlTokenPos doctype(int32_t pos) const;
    XmlTokenPos incorrect(XmlScanError code, int32_t pos) const;

    const char16_t* m_s;
};
