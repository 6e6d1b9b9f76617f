#include "xml/Utf8Decoder.h"

#include <QStringDecoder>

#include <sys/mman.h>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

void AdviseLargePages(void* memory, size_t bytes)
{
#if defined(MADV_HUGEPAGE)
    // Large buffers are written once from end to end: fewer, larger pages save most of the
    // page faults. Only the whole large pages inside the buffer are advised.
    constexpr uintptr_t page = uintptr_t(2) << 20;
    const uintptr_t first = (reinterpret_cast<uintptr_t>(memory) + page - 1) & ~(page - 1);
    const uintptr_t last = (reinterpret_cast<uintptr_t>(memory) + bytes) & ~(page - 1);
    if (last > first)
        madvise(reinterpret_cast<void*>(first), size_t(last - first), MADV_HUGEPAGE);
#else
    (void)memory, (void)bytes;
#endif
}

namespace
{
bool isContinuation(uint8_t byte)
{
    return (byte & 0xC0) == 0x80;
}

// Code points that the general decoder may treat specially; they are left to it.
bool isNonCharacter(char32_t code)
{
    return (code >= 0xFDD0 && code <= 0xFDEF) || (code & 0xFFFE) == 0xFFFE;
}

// Decodes one well-formed multi-byte sequence at p. Returns the bytes it took, or 0 when the
// sequence is malformed, truncated or otherwise not for the fast path.
int decodeSequence(const uint8_t* p, const uint8_t* end, char16_t*& out)
{
    const uint8_t lead = p[0];
    const ptrdiff_t left = end - p;
    if (lead >= 0xC2 && lead <= 0xDF)
    {
        if (left < 2 || !isContinuation(p[1]))
            return 0;
        *out++ = char16_t(((lead & 0x1F) << 6) | (p[1] & 0x3F));
        return 2;
    }
    if (lead >= 0xE0 && lead <= 0xEF)
    {
        if (left < 3 || !isContinuation(p[1]) || !isContinuation(p[2]))
            return 0;
        const char32_t code = ((lead & 0x0F) << 12) | ((p[1] & 0x3F) << 6) | (p[2] & 0x3F);
        if (code < 0x800 || (code >= 0xD800 && code <= 0xDFFF) || isNonCharacter(code))
            return 0;
        *out++ = char16_t(code);
        return 3;
    }
    if (lead >= 0xF0 && lead <= 0xF4)
    {
        if (left < 4 || !isContinuation(p[1]) || !isContinuation(p[2]) || !isContinuation(p[3]))
            return 0;
        const char32_t code =
            ((lead & 0x07) << 18) | ((p[1] & 0x3F) << 12) | ((p[2] & 0x3F) << 6) | (p[3] & 0x3F);
        if (code < 0x10000 || code > 0x10FFFF || isNonCharacter(code))
            return 0;
        *out++ = char16_t(0xD7C0 + (code >> 10));
        *out++ = char16_t(0xDC00 | (code & 0x3FF));
        return 4;
    }
    return 0;
}

// Widens a run of ASCII bytes, 16 at a time while 16 remain. Stops at the first other byte.
const uint8_t* widenAscii(const uint8_t* p, const uint8_t* end, char16_t*& out)
{
#if defined(__SSE2__)
    const __m128i zero = _mm_setzero_si128();
    while (end - p >= 16)
    {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
        // Writing all 16 is safe: the output has room for one unit per input byte.
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_unpacklo_epi8(bytes, zero));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 8), _mm_unpackhi_epi8(bytes, zero));
        const int high = _mm_movemask_epi8(bytes);
        if (high)
        {
            const int ascii = __builtin_ctz(unsigned(high));
            out += ascii;
            return p + ascii;
        }
        p += 16;
        out += 16;
    }
#endif
    while (p < end && *p < 0x80)
        *out++ = *p++;
    return p;
}
} // namespace

char16_t* DecodeUtf8(const char* data, const char* dataEnd, char16_t* out)
{
    const auto* p = reinterpret_cast<const uint8_t*>(data);
    const auto* end = reinterpret_cast<const uint8_t*>(dataEnd);
    while (p < end)
    {
        p = widenAscii(p, end, out);
        if (p == end)
            break;
        const int taken = decodeSequence(p, end, out);
        if (!taken)
        {
            // Malformed input from here on: the general decoder makes the replacement
            // characters. A byte-order mark is kept wherever it stands.
            QStringDecoder decoder(QStringConverter::Utf8,
                                   QStringConverter::Flag::Stateless |
                                       QStringConverter::Flag::ConvertInitialBom);
            QChar* rest =
                decoder.appendToBuffer(reinterpret_cast<QChar*>(out), QByteArrayView(p, end - p));
            return reinterpret_cast<char16_t*>(rest);
        }
        p += taken;
    }
    return out;
}

size_t CompleteUtf8Prefix(const char* data, size_t size)
{
    const auto* bytes = reinterpret_cast<const uint8_t*>(data);
    // The last byte that can start a sequence, among the last four.
    for (size_t back = 1; back <= 4 && back <= size; ++back)
    {
        const uint8_t byte = bytes[size - back];
        if (isContinuation(byte))
            continue;
        const size_t needed = byte < 0xC0 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
        return needed > back ? size - back : size;
    }
    return size;
}

QString DecodeUtf8(const char* data, qsizetype size)
{
    QString text(size, Qt::Uninitialized);
    char16_t* const begin = reinterpret_cast<char16_t*>(text.data());
    text.truncate(DecodeUtf8(data, data + size, begin) - begin);
    return text;
}
