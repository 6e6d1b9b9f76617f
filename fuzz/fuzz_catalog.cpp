// Any byte string that loads as a catalog must come back from a write as the same catalog:
// same GUIDs, tree, names, flags, order numbers, properties with their types and values.
// A difference, a crash, a hang or a sanitizer report is a failure; the inputs found go to
// tests/catalog/roundtrip/, which the catalog tests replay.

#include "tests/catalog/CatalogRoundTrip.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size));
    QString problem = CatalogTest::roundTripProblem(bytes);
    if (problem.isEmpty()) {
        // The decoded-text reader must agree with the bytes reader on what it keeps.
        ZEVGis::Data::CCatalog fromBytes;
        ZEVGis::Data::CCatalog fromText;
        if (fromBytes.ParseXMLBytes(bytes) && fromText.ParseXML(fromBytes.GetXML())
            && CatalogTest::dump(fromText) != CatalogTest::dump(fromBytes))
            problem = QStringLiteral("the catalog read from its written text differs");
        else if (fromBytes.GetAllElementsMap()->size() && !fromText.GetAllElementsMap()->size())
            problem = QStringLiteral("the written text does not load: ") + fromText.ParseError();
    }
    if (!problem.isEmpty()) {
        std::fprintf(stderr, "catalog round trip: %s\n", qPrintable(problem));
        std::abort();
    }
    return 0;
}
