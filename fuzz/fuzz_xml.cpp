// Any byte string, read as UTF-8, must parse without a crash, a hang or a sanitizer report, and
// leave an index whose links agree and a verdict that agrees with the result text. The fast
// paths of the parser and the decoder are checked against their plain counterparts.

#include "tests/xml/XmlIndexCheck.h"
#include "xml/Utf8Decoder.h"
#include "xml/XmlDocument.h"
#include "xml/XmlFastPaths.h"

#include <QStringDecoder>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace
{
[[noreturn]] void fail(const char* what, const QString& detail)
{
    std::fprintf(stderr, "%s: %s\n", what, qPrintable(detail));
    std::abort();
}

QString dumpIndex(const CXmlDocument& doc)
{
    QString dump;
    for (int i = 0; i < doc.RecordCount(); ++i)
    {
        const ElementPos& e = doc.Record(i);
        dump += QStringLiteral("%1 %2 %3 %4 %5 %6 %7 %8\n")
                    .arg(e.start)
                    .arg(e.length)
                    .arg(e.tagLengths)
                    .arg(e.flags)
                    .arg(e.parent)
                    .arg(e.firstChild)
                    .arg(e.nextSibling)
                    .arg(e.prevSibling);
    }
    return dump;
}

void checkDecoder(const char* bytes, size_t size, const QString& text)
{
    QStringDecoder reference(QStringConverter::Utf8, QStringConverter::Flag::Stateless |
                                                         QStringConverter::Flag::ConvertInitialBom);
    const QString expected = reference.decode(QByteArrayView(bytes, qsizetype(size)));
    if (text != expected)
        fail("decoder differs from QStringDecoder", text);

    // Block by block, cut where the last byte says, as a file is read.
    const size_t cut = size ? size_t(uint8_t(bytes[size - 1])) % size : 0;
    const size_t first = CompleteUtf8Prefix(bytes, cut);
    std::vector<char16_t> out(size + 1);
    char16_t* end = DecodeUtf8(bytes, bytes + first, out.data());
    end = DecodeUtf8(bytes + first, bytes + size, end);
    if (QStringView(out.data(), end - out.data()) != text)
        fail("decoding in two blocks differs", text);
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const char* bytes = reinterpret_cast<const char*>(data);
    const QString text = DecodeUtf8(bytes, qsizetype(size));
    checkDecoder(bytes, size, text);

    // The low bit of the first byte picks the matching mode, so both are covered.
    const unsigned flags = size && (data[0] & 1) ? CXmlDocument::IgnoreCase : 0;
    CXmlDocument doc;
    doc.SetDocFlags(flags);
    const bool wellFormed = doc.SetDocumentText(text);
    const QString problem = XmlIndexProblem(doc);
    if (!problem.isEmpty())
        fail("inconsistent index", problem);
    if (wellFormed == !doc.GetResult().isEmpty())
        fail("verdict and result disagree", doc.GetResult());

    XmlFastPaths::Enabled = false;
    CXmlDocument plain;
    plain.SetDocFlags(flags);
    const bool plainWellFormed = plain.SetDocumentText(text);
    XmlFastPaths::Enabled = true;
    if (plainWellFormed != wellFormed || plain.GetResult() != doc.GetResult() ||
        dumpIndex(plain) != dumpIndex(doc))
        fail("fast paths differ from the plain parse",
             doc.GetResult() + QStringLiteral(" / ") + plain.GetResult());
    return 0;
}
