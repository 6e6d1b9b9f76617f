#pragma once

// Character searches for the scanner, 8 UTF-16 units at a time where SSE2 is there. A block is
// loaded only while it lies wholly before `end` (the text's terminating 0), so nothing past the
// text is read; the rest is searched one unit at a time, and a 0 always stops a search.

#include "xml/XmlFastPaths.h"

#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace XmlCharSearch
{

#if defined(__SSE2__)
inline __m128i load(const char16_t* p)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}
inline __m128i equal(__m128i block, char16_t c)
{
    return _mm_cmpeq_epi16(block, _mm_set1_epi16(short(c)));
}
inline const char16_t* firstSet(const char16_t* p, __m128i matches, int& found)
{
    found = _mm_movemask_epi8(matches);
    return p + (found ? __builtin_ctz(unsigned(found)) / 2 : 0);
}
#endif

// The first unit equal to one of Cs, or to 0.
template <char16_t... Cs>
inline const char16_t* FindAnyOrZero(const char16_t* p, const char16_t* end)
{
#if defined(__SSE2__)
    for (; XmlFastPaths::Enabled && end - p >= 8; p += 8)
    {
        const __m128i block = load(p);
        const __m128i matches = (equal(block, 0) | ... | equal(block, Cs));
        int found;
        const char16_t* hit = firstSet(p, matches, found);
        if (found)
            return hit;
    }
#endif
    for (;; ++p)
    {
        const char16_t c = *p;
        if (c == 0 || ((c == Cs) || ...))
            return p;
    }
}

// The first unit equal to c, or to 0.
inline const char16_t* FindOrZero(const char16_t* p, const char16_t* end, char16_t c)
{
#if defined(__SSE2__)
    for (; XmlFastPaths::Enabled && end - p >= 8; p += 8)
    {
        const __m128i block = load(p);
        int found;
        const char16_t* hit = firstSet(p, equal(block, c) | equal(block, 0), found);
        if (found)
            return hit;
    }
#endif
    for (;; ++p)
        if (*p == c || *p == 0)
            return p;
}

// The first unit that is not a space, tab, line feed or carriage return (the 0 is not one).
inline const char16_t* SkipSpaces(const char16_t* p, const char16_t* end)
{
#if defined(__SSE2__)
    for (; XmlFastPaths::Enabled && end - p >= 8; p += 8)
    {
        const __m128i block = load(p);
        const __m128i spaces =
            equal(block, u' ') | equal(block, u'\t') | equal(block, u'\n') | equal(block, u'\r');
        const int other = ~_mm_movemask_epi8(spaces) & 0xFFFF;
        if (other)
            return p + __builtin_ctz(unsigned(other)) / 2;
    }
#endif
    while (*p == u' ' || *p == u'\t' || *p == u'\n' || *p == u'\r')
        ++p;
    return p;
}
#if defined(__SSE2__)
constexpr bool HasWindows = true;

// 16 units from p as bit masks, bit i standing for p[i]. Only for p + 16 <= end.
struct TagWindow
{
    unsigned doubleQuote;
    unsigned otherStop; // single quote or 0: the fast tag path leaves those to the plain search
    unsigned greater;
};

inline unsigned bits(__m128i low, __m128i high)
{
    return unsigned(_mm_movemask_epi8(_mm_packs_epi16(low, high)));
}

inline TagWindow LoadTagWindow(const char16_t* p)
{
    const __m128i a = load(p);
    const __m128i b = load(p + 8);
    TagWindow w;
    w.doubleQuote = bits(equal(a, u'"'), equal(b, u'"'));
    w.otherStop = bits(equal(a, u'\'') | equal(a, 0), equal(b, u'\'') | equal(b, 0));
    w.greater = bits(equal(a, u'>'), equal(b, u'>'));
    return w;
}

// Candidates for the end of a name among the 16 units from p: '/', '>' and every unit up to
// ' ' (the name delimiters " \t\n\r" and 0 among them; other control characters are false
// candidates that the caller must tell apart). Only for p + 16 <= end.
inline unsigned NameStopCandidates(const char16_t* p)
{
    const __m128i space = _mm_set1_epi16(0x20);
    const __m128i zero = _mm_setzero_si128();
    const __m128i a = load(p);
    const __m128i b = load(p + 8);
    const __m128i lowA = _mm_cmpeq_epi16(_mm_subs_epu16(a, space), zero);
    const __m128i lowB = _mm_cmpeq_epi16(_mm_subs_epu16(b, space), zero);
    return bits(lowA | equal(a, u'/') | equal(a, u'>'), lowB | equal(b, u'/') | equal(b, u'>'));
}

// Bit i set when unit i lies inside a double-quoted value (its opening quote included), given
// the quote marks of a window and whether the window starts inside a value.
inline unsigned InsideQuotes(unsigned quotes, unsigned insideBefore)
{
    unsigned x = quotes;
    x ^= x << 1;
    x ^= x << 2;
    x ^= x << 4;
    x ^= x << 8;
    return (insideBefore ? ~x : x) & 0xFFFF;
}
#else
constexpr bool HasWindows = false;
#endif
} // namespace XmlCharSearch
