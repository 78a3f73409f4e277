// SPDX-License-Identifier: Apache-2.0
// Documents into records and back, against the bare XML library on the same bytes in the same process and the
// same state of the heap. "asItComes" runs first, on the heap as malloc manages it; its figures bind nothing.
#include "model/TableDescriptor.h"
#include "model/XmlParser.h"
#include "model/xmlLibrary.h"
#include "sampleRows.h"
#include "sideBySide.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <memory>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufFormatTarget.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/util/XMLUni.hpp>

namespace Zorvane::Bench {

namespace {

using namespace xercesc;

// Many turns for what is short, and never less than three.
int roundsFor(std::size_t rows) {
    return rows <= 1000 ? 51 : rows <= 10'000 ? 7 : 3;
}

// --- Reading

double oursReads(std::string& document) {
    CZor zor;
    int rc = 0;
    const double time = timeOf([&] {
        rc =
            zor.readXml(reinterpret_cast<unsigned char*>(document.data()), static_cast<int>(document.size()));
    });
    if (rc != 0)
        std::abort();
    return time;
}

double bareReads(const std::string& document) {
    std::unique_ptr<XercesDOMParser> parser;
    return timeOf([&] {
        const MemBufInputSource source(reinterpret_cast<const XMLByte*>(document.data()), document.size(),
                                       "bench");
        parser = std::make_unique<XercesDOMParser>();
        parser->parse(source);
    });
}

void compareReading(benchmark::State& state, double target) {
    const XmlLibraryHold library;
    const auto rows = static_cast<std::size_t>(state.range(0));
    std::string document = mixedDocument(rows);
    for ([[maybe_unused]] auto _ : state)
        report(state,
               runByTurns(
                   roundsFor(rows), [&] { return oursReads(document); }, [&] { return bareReads(document); }),
               target);
    state.counters["MB"] = static_cast<double>(document.size()) / 1e6;
}

void readingAsItComes(benchmark::State& state) {
    compareReading(state, 0);
}

void reading(benchmark::State& state) {
    keepHeapWarm();
    compareReading(state, 0.75);
}

// 200 documents, each with a parser of its own.
void smallDocuments(benchmark::State& state) {
    keepHeapWarm();
    const XmlLibraryHold library;
    constexpr int documents = 200;
    std::string document = mixedDocument(5);
    const auto repeat = [](auto once) {
        double time = 0;
        for (int i = 0; i < documents; ++i)
            time += once();
        return time;
    };
    for ([[maybe_unused]] auto _ : state)
        report(state,
               runByTurns(
                   21, [&] { return repeat([&] { return oursReads(document); }); },
                   [&] { return repeat([&] { return bareReads(document); }); }),
               1.3);
}

// --- Writing

// The content of a container as texts, which is what the bare library is given.
struct Value {
    const char* tag;
    std::string text;
    const char* fromDb; // null where the element has no such attribute
};
struct Row {
    const char* tag;
    std::vector<Value> values;
};

std::vector<Row> textsOf(const std::string& document) {
    std::vector<Row> rows;
    XmlParser parser(reinterpret_cast<const unsigned char*>(document.data()),
                     static_cast<int>(document.size()));
    if (parser.initChildren() != 0)
        return rows;
    const std::string attribute = "fromDb";
    for (const std::string* tag = parser.firstObjectTag(); tag; tag = parser.nextObjectTag()) {
        const TableDescriptor& table = *findTable(*tag);
        Row& row = rows.emplace_back(Row{table.name, {}});
        for (tag = parser.firstValueTag(); tag; tag = parser.nextValueTag()) {
            Value& value = row.values.emplace_back(Value{table.find(*tag)->name, {}, nullptr});
            parser.CopyNodeValue(&value.text);
            std::string flag;
            parser.CopyNodeAttribute(&flag, &attribute);
            if (!flag.empty())
                value.fromDb = flag == "1" ? "1" : "0";
        }
    }
    return rows;
}

class Wide {
  public:
    explicit Wide(const char* text) : m_text(XMLString::transcode(text)) {}
    Wide(const Wide&) = delete;
    Wide& operator=(const Wide&) = delete;
    ~Wide() { XMLString::release(&m_text); }
    operator const XMLCh*() const { return m_text; }

  private:
    XMLCh* m_text;
};

struct Release {
    template <class Object>
    void operator()(Object* object) const {
        object->release();
    }
};

double bareWrites(const std::vector<Row>& rows) {
    MemBufFormatTarget target;
    std::unique_ptr<DOMDocument, Release> document;
    return timeOf([&] {
        DOMImplementation* implementation = DOMImplementationRegistry::getDOMImplementation(Wide("LS"));
        document.reset(implementation->createDocument(nullptr, Wide(ZOR_XML_ROOT), nullptr));
        DOMElement* root = document->getDocumentElement();
        for (const Row& row : rows) {
            DOMElement* record = document->createElement(Wide(row.tag));
            root->appendChild(record);
            for (const Value& value : row.values) {
                DOMElement* field = document->createElement(Wide(value.tag));
                record->appendChild(field);
                field->appendChild(document->createTextNode(Wide(value.text.c_str())));
                if (value.fromDb)
                    field->setAttribute(Wide("fromDb"), Wide(value.fromDb));
            }
        }
        const std::unique_ptr<DOMLSSerializer, Release> serializer(implementation->createLSSerializer());
        serializer->getDomConfig()->setParameter(XMLUni::fgDOMWRTFormatPrettyPrint, true);
        const std::unique_ptr<DOMLSOutput, Release> output(implementation->createLSOutput());
        output->setByteStream(&target);
        serializer->write(document.get(), output.get());
    });
}

double oursWrites(CZor& zor) {
    unsigned char* xml = nullptr;
    int len = 0;
    const double time = timeOf([&] { zor.writeXml(&xml, &len, FOR_ALL); });
    delete[] xml;
    return time;
}

void compareWriting(benchmark::State& state, double target) {
    const XmlLibraryHold library;
    const auto rows = static_cast<std::size_t>(state.range(0));
    CZor zor;
    addMixedRows(zor, rows);
    const std::vector<Row> texts = textsOf(documentOf(zor));
    for ([[maybe_unused]] auto _ : state)
        report(state,
               runByTurns(
                   roundsFor(rows), [&] { return oursWrites(zor); }, [&] { return bareWrites(texts); }),
               target);
}

void writingAsItComes(benchmark::State& state) {
    compareWriting(state, 0);
}

void writing(benchmark::State& state) {
    keepHeapWarm();
    compareWriting(state, 0.85);
}

// --- Memory

// A line of /proc/self/status in bytes.
double statusLine(const char* name) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen("/proc/self/status", "re"),
                                                               std::fclose);
    std::array<char, 256> line{};
    while (file && std::fgets(line.data(), line.size(), file.get()))
        if (std::strncmp(line.data(), name, std::strlen(name)) == 0)
            return std::strtod(line.data() + std::strlen(name) + 1, nullptr) * 1024;
    return 0;
}

// How far memory rises while a file is read, in sizes of the file: the file's bytes, the tree and the
// records.
int printPeak(char* path) {
    const XmlLibraryHold library;
    CZor zor;
    const double before = statusLine("VmRSS");
    if (zor.readXml(path) != 0)
        return 1;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path, "re"), std::fclose);
    std::fseek(file.get(), 0, SEEK_END);
    std::printf("%f\n", (statusLine("VmHWM") - before) / static_cast<double>(std::ftell(file.get())));
    return 0;
}

// In a process of its own, whose memory nothing has touched yet.
double peakOfReading(const std::string& path) {
    std::array<char, 4096> self{};
    if (readlink("/proc/self/exe", self.data(), self.size() - 1) < 0)
        return 0;
    const std::string command = std::string(self.data()) + " --peak " + path;
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> child(popen(command.c_str(), "re"), pclose);
    double peak = 0;
    if (child && std::fscanf(child.get(), "%lf", &peak) != 1)
        return 0;
    return peak;
}

void memory(benchmark::State& state) {
    const std::string path = std::string(P_tmpdir) + "/document_bench." + std::to_string(getpid()) + ".xml";
    {
        const std::string document = mixedDocument(static_cast<std::size_t>(state.range(0)));
        const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "we"),
                                                                   std::fclose);
        std::fwrite(document.data(), 1, document.size(), file.get());
    }
    for ([[maybe_unused]] auto _ : state)
        state.counters["ratio"] = peakOfReading(path);
    state.counters["target"] = 11;
    unlink(path.c_str());
}

void sizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(200)->Arg(10'000)->Iterations(1)->Unit(benchmark::kMillisecond);
}

BENCHMARK(readingAsItComes)->Apply(sizes);
BENCHMARK(writingAsItComes)->Apply(sizes);
BENCHMARK(memory)->Apply([](auto* benchmark) { benchmark->Arg(20'000)->Arg(100'000)->Iterations(1); });
BENCHMARK(reading)->Apply(sizes)->Arg(100'000);
BENCHMARK(writing)->Apply(sizes)->Arg(100'000);
BENCHMARK(smallDocuments)->Iterations(1)->Unit(benchmark::kMillisecond);

// A minute and many gigabytes: `bench_document --million`.
void addMillions() {
    benchmark::RegisterBenchmark("reading", reading)
        ->Arg(1'000'000)
        ->Iterations(1)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("writing", writing)
        ->Arg(1'000'000)
        ->Iterations(1)
        ->Unit(benchmark::kMillisecond);
}

} // namespace

} // namespace Zorvane::Bench

int main(int argc, char** argv) {
    if (argc == 3 && std::strcmp(argv[1], "--peak") == 0)
        return Zorvane::Bench::printPeak(argv[2]);
    if (argc > 1 && std::strcmp(argv[1], "--million") == 0) {
        Zorvane::Bench::addMillions();
        argv[1] = argv[0];
        --argc;
        ++argv;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
