// Load and well-formedness check of catalog files: CXmlDocument (file read, UTF-8 decoding and
// index) against pugixml's default load_buffer and expat on the same bytes, at about 1, 10 and
// 100 MB. Throughput is reported over the file's bytes; memory counters say what each parser
// holds for one document.

#include "CatalogGenerator.h"
#include "xml/XmlDocument.h"

#include <benchmark/benchmark.h>
#include <expat.h>
#include <pugixml.hpp>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>
#include <vector>

namespace
{
struct Sample
{
    std::string path;
    std::string bytes;
};

// Counts the bytes pugixml and expat hold; a header before each block remembers its size.
namespace tracked
{
size_t current = 0;
size_t peak = 0;
constexpr size_t Header = 16;

void* allocate(size_t size)
{
    auto* block = static_cast<char*>(std::malloc(size + Header));
    if (!block)
        return nullptr;
    *reinterpret_cast<size_t*>(block) = size;
    current += size;
    peak = std::max(peak, current);
    return block + Header;
}
void release(void* pointer)
{
    if (!pointer)
        return;
    char* block = static_cast<char*>(pointer) - Header;
    current -= *reinterpret_cast<size_t*>(block);
    std::free(block);
}
void* reallocate(void* pointer, size_t size)
{
    if (!pointer)
        return allocate(size);
    char* block = static_cast<char*>(pointer) - Header;
    const size_t old = *reinterpret_cast<size_t*>(block);
    auto* grown = static_cast<char*>(std::realloc(block, size + Header));
    if (!grown)
        return nullptr;
    *reinterpret_cast<size_t*>(grown) = size;
    current = current - old + size;
    peak = std::max(peak, current);
    return grown + Header;
}
void resetPeak()
{
    peak = current;
}
} // namespace tracked

void setCounters(benchmark::State& state, const Sample& sample, double memoryBytes, double elements)
{
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(sample.bytes.size()));
    state.counters["file_MB"] = double(sample.bytes.size()) / 1e6;
    state.counters["mem_MB"] = memoryBytes / 1e6;
    state.counters["mem_per_file_byte"] = memoryBytes / double(sample.bytes.size());
    state.counters["elements"] = elements;
}

void ours(benchmark::State& state, const Sample* sample)
{
    const QString path = QString::fromStdString(sample->path);
    for (auto _ : state)
    {
        CXmlDocument doc;
        if (!doc.LoadFile(path))
            state.SkipWithError("not well formed");
        benchmark::DoNotOptimize(doc.RecordCount());
    }
    CXmlDocument doc;
    doc.LoadFile(path);
    // The text and the index; the file's bytes are held only while they are decoded.
    const double memory = double(doc.GetDocumentText().capacity()) * 2 +
                          double(doc.RecordCapacity()) * sizeof(ElementPos);
    setCounters(state, *sample, memory, doc.RecordCount() - 1);
}

// The same index built from a text already in memory: the parse alone, without read and decode.
void oursParseOnly(benchmark::State& state, const Sample* sample)
{
    const QString text = QString::fromUtf8(sample->bytes.data(), qsizetype(sample->bytes.size()));
    CXmlDocument doc;
    for (auto _ : state)
    {
        if (!doc.SetDocumentText(text))
            state.SkipWithError("not well formed");
        benchmark::DoNotOptimize(doc.RecordCount());
    }
    const double memory =
        double(text.capacity()) * 2 + double(doc.RecordCapacity()) * sizeof(ElementPos);
    setCounters(state, *sample, memory, doc.RecordCount() - 1);
}

void pugiLoad(benchmark::State& state, const Sample* sample)
{
    size_t elements = 0;
    for (auto _ : state)
    {
        pugi::xml_document doc;
        if (!doc.load_buffer(sample->bytes.data(), sample->bytes.size()))
            state.SkipWithError("not well formed");
        benchmark::DoNotOptimize(doc.first_child());
    }
    tracked::resetPeak();
    const size_t before = tracked::current;
    {
        pugi::xml_document doc;
        doc.load_buffer(sample->bytes.data(), sample->bytes.size());
        elements = doc.select_nodes("//*").size();
    }
    setCounters(state, *sample, double(tracked::peak - before), double(elements));
}

void XMLCALL countElement(void* userData, const XML_Char*, const XML_Char**)
{
    ++*static_cast<size_t*>(userData);
}
void XMLCALL endElement(void*, const XML_Char*) {}

bool expatParse(const Sample& sample, size_t& elements)
{
    static const XML_Memory_Handling_Suite memory{tracked::allocate, tracked::reallocate,
                                                  tracked::release};
    XML_Parser parser = XML_ParserCreate_MM(nullptr, &memory, nullptr);
    XML_SetUserData(parser, &elements);
    XML_SetElementHandler(parser, countElement, endElement);
    const bool ok =
        XML_Parse(parser, sample.bytes.data(), int(sample.bytes.size()), XML_TRUE) == XML_STATUS_OK;
    XML_ParserFree(parser);
    return ok;
}

void expat(benchmark::State& state, const Sample* sample)
{
    size_t elements = 0;
    for (auto _ : state)
    {
        elements = 0;
        if (!expatParse(*sample, elements))
            state.SkipWithError("not well formed");
    }
    tracked::resetPeak();
    const size_t before = tracked::current;
    elements = 0;
    expatParse(*sample, elements);
    setCounters(state, *sample, double(tracked::peak - before), double(elements));
}

// Other work on the machine only ever adds time: the fastest run is the steadiest figure.
double fastest(const std::vector<double>& values)
{
    return *std::min_element(values.begin(), values.end());
}

std::string readAll(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}
} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    pugi::set_memory_management_functions(tracked::allocate, tracked::release);

    namespace fs = std::filesystem;
    const fs::path dir =
        fs::temp_directory_path() / ("zevx-bench-xml-" + std::to_string(::getpid()));
    fs::create_directories(dir);
    std::vector<Sample> samples;
    for (const int megabytes : {1, 10, 100})
    {
        const std::string path =
            (dir / ("catalog-" + std::to_string(megabytes) + "MB.xml")).string();
        if (!WriteCatalogFile(path, size_t(megabytes) * 1000 * 1000))
            return 1;
        samples.push_back(Sample{path, readAll(path)});
    }
    for (const Sample& sample : samples)
    {
        const std::string size = std::to_string(sample.bytes.size() / 1000000) + "MB";
        benchmark::RegisterBenchmark(("CXmlDocument LoadFile/" + size).c_str(), ours, &sample)
            ->Unit(benchmark::kMillisecond)
            ->ComputeStatistics("min", fastest);
        benchmark::RegisterBenchmark(("CXmlDocument parse only/" + size).c_str(), oursParseOnly,
                                     &sample)
            ->Unit(benchmark::kMillisecond)
            ->ComputeStatistics("min", fastest);
        benchmark::RegisterBenchmark(("pugixml load_buffer/" + size).c_str(), pugiLoad, &sample)
            ->Unit(benchmark::kMillisecond)
            ->ComputeStatistics("min", fastest);
        benchmark::RegisterBenchmark(("expat XML_Parse/" + size).c_str(), expat, &sample)
            ->Unit(benchmark::kMillisecond)
            ->ComputeStatistics("min", fastest);
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    fs::remove_all(dir);
    return 0;
}
