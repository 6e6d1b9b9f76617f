// Any byte string, read as UTF-8, must parse without a crash, a hang or a sanitizer report, and
// leave an index whose links agree and a verdict that agrees with the result text.

#include "tests/xml/XmlIndexCheck.h"
#include "xml/XmlDocument.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
    CXmlDocument doc;
    // The low bit of the first byte picks the matching mode, so both are covered.
    doc.SetDocFlags(size && (data[0] & 1) ? CXmlDocument::IgnoreCase : 0);
    const bool wellFormed = doc.SetDocumentText(text);

    const QString problem = XmlIndexProblem(doc);
    if (!problem.isEmpty())
    {
        std::fprintf(stderr, "inconsistent index: %s\n", qPrintable(problem));
        std::abort();
    }
    if (wellFormed == !doc.GetResult().isEmpty())
    {
        std::fprintf(stderr, "verdict %d with result '%s'\n", int(wellFormed), qPrintable(doc.GetResult()));
        std::abort();
    }
    return 0;
}
