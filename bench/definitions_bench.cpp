// definitions_bench.cpp: LoadReferenceFiles of a 200,000-line ovsdef.dat from the memory
// back-end, against a baseline in the same run that only reads and deciphers the records.
// Besides the time per load it reports the load's peak heap: the most bytes held at once
// during a first load, above what was held before it (the file itself lives in the memory
// back-end, standing in for the disk, and is not counted).
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <new>

#include "DefinitionSetGenerator.h"
#include "core/AppState.h"
#include "core/TextFile.h"
#include "definitions/Cipher.h"
#include "definitions/DefinitionLoader.h"
#include "definitions/DefinitionTables.h"
#include "platform/memory/MemoryPlatform.h"
#include "ui/Form.h"

namespace {

// Live and peak heap bytes, counted by the replaced operator new and delete below. The
// benchmark runs on one thread.
std::size_t g_live = 0;
std::size_t g_peak = 0;
constexpr std::size_t kHeader = alignof(std::max_align_t);

void* CountedAllocate(std::size_t size) {
    auto* p = static_cast<unsigned char*>(std::malloc(size + kHeader));
    if (!p) throw std::bad_alloc();
    *reinterpret_cast<std::size_t*>(p) = size;
    g_live += size;
    if (g_live > g_peak) g_peak = g_live;
    return p + kHeader;
}

void CountedFree(void* q) noexcept {
    if (!q) return;
    auto* p = static_cast<unsigned char*>(q) - kHeader;
    g_live -= *reinterpret_cast<std::size_t*>(p);
    std::free(p);
}

const char* const kData = "C:\\Orvex\\";

struct Fixture {
    orvex::platform::memory::MemoryPlatform machine;
    orvex::platform::ScopedPlatform installed{machine.view()};
    std::size_t definitionBytes = 0;
    int definitionLines = 0;

    Fixture() {
        const orvex::bench::DefinitionSet set = orvex::bench::GenerateDefinitionSet();
        const std::string defs = orvex::bench::CompileLines(set.definitionLines);
        definitionBytes = defs.size();
        definitionLines = static_cast<int>(set.definitionLines.size());
        machine.files.addFile(std::string(kData) + "ovsdef.dat", defs);
        machine.files.addFile(std::string(kData) + "ovsstatic.dat",
                              orvex::bench::CompileLines(set.staticLines));
        orvex::App().DataFolder = kData;
        orvex::App().SystemFolder = "C:\\WINDOWS\\system32";
        orvex::App().WindowsFolder = "C:\\WINDOWS";
    }
};

Fixture& TheFixture() {
    static Fixture fixture;
    return fixture;
}

// The reading part alone: the file's bytes, every record, deciphered and trimmed.
void BM_ReadAndDecipherBaseline(benchmark::State& state) {
    TheFixture();
    std::string text, plain;
    for (auto _ : state) {
        orvex::DefinitionFile file{orvex::ReadAllBytes(std::string(kData) + "ovsdef.dat"), 0};
        std::size_t lines = 0;
        while (!file.AtEnd()) {
            text = orvex::GetString(file, true);
            if (text.empty()) continue;
            orvex::Decrypt(text, orvex::kDefinitionKey, plain);
            while (!plain.empty() && plain.back() == ' ')
                plain.pop_back();
            ++lines;
        }
        benchmark::DoNotOptimize(lines);
    }
    state.counters["s_per_load"] =
        benchmark::Counter(static_cast<double>(state.iterations()),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(BM_ReadAndDecipherBaseline)->Unit(benchmark::kMillisecond);

void BM_LoadReferenceFiles(benchmark::State& state) {
    Fixture& f = TheFixture();
    // A first load on empty tables, for the peak.
    orvex::Definitions() = orvex::DefinitionTables{};
    orvex::ui::ResetForms();
    const std::size_t before = g_live;
    g_peak = before;
    orvex::LoadReferenceFiles();
    const std::size_t peak = g_peak - before;
    const std::size_t kept = g_live - before;
    for (auto _ : state)
        orvex::LoadReferenceFiles();
    const auto& t = orvex::Definitions();
    if (t.FileDefs.Count < 2 || t.Md5Index.Count == 0)
        state.SkipWithError("definitions not loaded");
    state.counters["s_per_load"] =
        benchmark::Counter(static_cast<double>(state.iterations()),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    state.counters["peak_heap_MB"] = static_cast<double>(peak) / (1024.0 * 1024.0);
    state.counters["tables_MB"] = static_cast<double>(kept) / (1024.0 * 1024.0);
    state.counters["file_MB"] = static_cast<double>(f.definitionBytes) / (1024.0 * 1024.0);
    state.counters["lines"] = f.definitionLines;
}
BENCHMARK(BM_LoadReferenceFiles)->Unit(benchmark::kMillisecond);

}  // namespace

void* operator new(std::size_t size) {
    return CountedAllocate(size);
}
void* operator new[](std::size_t size) {
    return CountedAllocate(size);
}
void operator delete(void* p) noexcept {
    CountedFree(p);
}
void operator delete[](void* p) noexcept {
    CountedFree(p);
}
void operator delete(void* p, std::size_t) noexcept {
    CountedFree(p);
}
void operator delete[](void* p, std::size_t) noexcept {
    CountedFree(p);
}
