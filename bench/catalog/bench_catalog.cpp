// Load and save of a generated 100,000-entry catalog, and the memory a loaded entry takes.

#include "bench/catalog/CatalogGenerator.h"
#include "catalog/CatalogManager.h"
#include "catalog/CatalogStore.h"
#include "catalog/SafeFileWrite.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>
#include <benchmark/benchmark.h>
#include <malloc.h>

namespace
{

constexpr int Entries = 100000;

const QByteArray& catalogBytes()
{
    static const QByteArray bytes = [] {
        ZEVGis::Data::CCatalog catalog;
        ZevxBench::generateCatalog(catalog, Entries);
        return catalog.GetXMLBytes();
    }();
    return bytes;
}

void BM_LoadCatalog(benchmark::State& state)
{
    const QByteArray& bytes = catalogBytes();
    for (auto _ : state) {
        ZEVGis::Data::CCatalog catalog;
        if (!catalog.ParseXMLBytes(bytes))
            state.SkipWithError("parse failed");
        benchmark::DoNotOptimize(catalog.GetAllElementsMap()->size());
        // Freeing the catalog is not part of loading, nor is the allocator's deferred work
        // for those frees (glibc consolidates them at the next big allocation).
        state.PauseTiming();
        catalog.Clear();
        malloc_trim(0);
        state.ResumeTiming();
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * bytes.size());
    state.counters["entries"] = Entries;
    state.counters["file_MB"] = bytes.size() / 1e6;
}
BENCHMARK(BM_LoadCatalog)->Unit(benchmark::kMillisecond)->Iterations(5);

void BM_LoadCatalogFromFile(benchmark::State& state)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("bench.xml"));
    QString why;
    if (!ZEVGis::Data::WriteFileSafely(path, catalogBytes(), why))
        state.SkipWithError(qPrintable(why));
    for (auto _ : state) {
        QFile file(path);
        file.open(QIODevice::ReadOnly);
        ZEVGis::Data::CCatalog catalog;
        if (!catalog.ParseXMLBytes(file.readAll()))
            state.SkipWithError("parse failed");
        state.PauseTiming();
        catalog.Clear();
        malloc_trim(0);
        state.ResumeTiming();
    }
}
BENCHMARK(BM_LoadCatalogFromFile)->Unit(benchmark::kMillisecond)->Iterations(5);

// What QXmlStreamReader alone needs to read the same file, building nothing: the reason
// catalog files are read with pugixml.
void BM_QXmlStreamReaderScanOnly(benchmark::State& state)
{
    const QByteArray& bytes = catalogBytes();
    for (auto _ : state) {
        QXmlStreamReader reader(bytes);
        qint64 attributes = 0;
        while (!reader.atEnd())
            if (reader.readNext() == QXmlStreamReader::StartElement)
                attributes += reader.attributes().size();
        benchmark::DoNotOptimize(attributes);
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * bytes.size());
}
BENCHMARK(BM_QXmlStreamReaderScanOnly)->Unit(benchmark::kMillisecond)->Iterations(3);

// What the editor waits for when it opens a catalog that keeps a drawing copy: GetCatalog(ref, 0)
// then GetCatalog(ref, 1) on a fresh manager, two files of the same size on disk.
void BM_ManagerCatalogAndDrawingCopy(benchmark::State& state)
{
    using namespace ZEVGis::Data;
    QTemporaryDir dir;
    RegistryEntry entry;
    entry.metadata.reference = QStringLiteral("BENCH");
    entry.metadata.fileName = QStringLiteral("bench.xml");
    entry.metadata.maintainDocumentSpecificVersion = 1;
    const QString drawing = dir.filePath(QStringLiteral("bench.dwg"));
    QDir().mkpath(drawing + QStringLiteral(".catalogs"));
    const std::pair<QString, QByteArray> files[] = {
        {dir.filePath(QStringLiteral("registry.xml")), writeRegistry({entry})},
        {dir.filePath(QStringLiteral("bench.xml")), catalogBytes()},
        {drawing + QStringLiteral(".catalogs/bench.xml"), catalogBytes()}};
    for (const auto& [path, bytes] : files) {
        QString why;
        if (!WriteFileSafely(path, bytes, why))
            state.SkipWithError(qPrintable(why));
    }
    CCatalogManager* manager = CCatalogManager::Instance();
    for (auto _ : state) {
        state.PauseTiming();
        manager->Configure(dir.path(), drawing); // frees the previous round's catalogs
        malloc_trim(0);
        std::vector<boost::shared_ptr<CCatalogMetadata>> registry;
        manager->GetCatalogRegistry(registry);
        state.ResumeTiming();
        const bool loaded = manager->GetCatalog(QStringLiteral("BENCH"), 0)
                            && manager->GetCatalog(QStringLiteral("BENCH"), 1);
        if (!loaded)
            state.SkipWithError("load failed");
    }
    manager->Configure(dir.path(), drawing);
}
BENCHMARK(BM_ManagerCatalogAndDrawingCopy)->Unit(benchmark::kMillisecond)->Iterations(5)->UseRealTime();

void BM_SaveCatalog(benchmark::State& state)
{
    ZEVGis::Data::CCatalog catalog;
    catalog.ParseXMLBytes(catalogBytes());
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("bench.xml"));
    for (auto _ : state) {
        QString why;
        if (!ZEVGis::Data::WriteFileSafely(path, catalog.GetXMLBytes(), why))
            state.SkipWithError(qPrintable(why));
    }
    state.counters["entries"] = Entries;
}
BENCHMARK(BM_SaveCatalog)->Unit(benchmark::kMillisecond)->Iterations(5);

// The same file written through QXmlStreamWriter (items, categories and properties with the
// attributes the catalog writer puts out, into memory): the reason catalogs have a writer of
// their own.
void writeItem(QXmlStreamWriter& xml, ZEVGis::Data::CCatalogItem& item)
{
    xml.writeStartElement(QStringLiteral("i"));
    xml.writeAttribute(QStringLiteral("id"), item.GetGUID());
    xml.writeAttribute(QStringLiteral("n"), item.GetName());
    if (item.IsGroup())
        xml.writeAttribute(QStringLiteral("g"), QStringLiteral("1"));
    if (item.GetOrd())
        xml.writeAttribute(QStringLiteral("o"), QString::number(item.GetOrd()));
    if (!item.GetPictureRef().isEmpty())
        xml.writeAttribute(QStringLiteral("pic"), item.GetPictureRef());
    if (auto properties = item.GetProperties())
        for (const auto& category : *properties->GetCategoryVector()) {
            xml.writeStartElement(QStringLiteral("c"));
            xml.writeAttribute(QStringLiteral("n"), category->GetName());
            for (const auto& property : category->GetPropertyExVector()) {
                xml.writeEmptyElement(QStringLiteral("p"));
                xml.writeAttribute(QStringLiteral("t"), property->GetTag());
                const ZEVGis::Data::CDataBox value = property->GetValue();
                if (value.GetType() != ZEVGis::Data::DataType::String)
                    xml.writeAttribute(QStringLiteral("y"), ZEVGis::Data::dataTypeName(value.GetType()));
                if (!value.ToString().isEmpty())
                    xml.writeAttribute(QStringLiteral("v"), value.ToString());
                if (property->GetCaption() != property->GetTag())
                    xml.writeAttribute(QStringLiteral("cap"), property->GetCaption());
            }
            xml.writeEndElement();
        }
    std::vector<boost::shared_ptr<ZEVGis::Data::CCatalogItem>> children;
    item.GetSortedSubItems(children);
    for (const auto& child : children)
        writeItem(xml, *child);
    xml.writeEndElement();
}

void BM_QXmlStreamWriterOnly(benchmark::State& state)
{
    ZEVGis::Data::CCatalog catalog;
    catalog.ParseXMLBytes(catalogBytes());
    std::vector<boost::shared_ptr<ZEVGis::Data::CCatalogItem>> roots;
    catalog.GetSortedRootElements(roots);
    qsizetype size = 0;
    for (auto _ : state) {
        QByteArray bytes;
        QXmlStreamWriter xml(&bytes);
        xml.setAutoFormatting(true);
        xml.writeStartDocument();
        xml.writeStartElement(QStringLiteral("catalog"));
        xml.writeAttribute(QStringLiteral("ref"), catalog.GetReference());
        for (const auto& root : roots)
            writeItem(xml, *root);
        xml.writeEndDocument();
        size = bytes.size();
    }
    state.counters["file_MB"] = size / 1e6;
}
BENCHMARK(BM_QXmlStreamWriterOnly)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_MemoryPerEntry(benchmark::State& state)
{
    const QByteArray& bytes = catalogBytes();
    double perEntry = 0;
    for (auto _ : state) {
        malloc_trim(0);
        const size_t before = mallinfo2().uordblks;
        auto* catalog = new ZEVGis::Data::CCatalog;
        catalog->ParseXMLBytes(bytes);
        const size_t after = mallinfo2().uordblks;
        perEntry = double(after - before) / double(catalog->GetAllElementsMap()->size());
        delete catalog;
    }
    state.counters["bytes_per_entry"] = perEntry;
}
BENCHMARK(BM_MemoryPerEntry)->Unit(benchmark::kMillisecond)->Iterations(1);

} // namespace

BENCHMARK_MAIN();
