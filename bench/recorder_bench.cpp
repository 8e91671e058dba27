// recorder_bench.cpp: recording a large scan's findings (20,000 rows under 5,000 threat
// names, with and without an [ItemList] line for each name) against pushing the same rows
// into a plain vector, so the cost of the duplicate test, List1 and the severity look-up
// shows as a ratio.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "core/AppState.h"
#include "definitions/DefinitionTables.h"
#include "platform/memory/MemoryPlatform.h"
#include "scan/DefinitionLookup.h"
#include "scan/Recorder.h"

namespace {

constexpr int kFindings = 20000;
constexpr int kNames = 5000;

std::string ThreatName(int i) {
    return "Threat.Name" + std::to_string(i % kNames);
}

// Each name is found four times, at different places, and the names come round in turn
// as a scan of many folders meets them.
const std::vector<orvex::ScumRow>& Findings() {
    static const std::vector<orvex::ScumRow> rows = [] {
        std::vector<orvex::ScumRow> out;
        for (int i = 0; i < kFindings; ++i) {
            out.push_back({ThreatName(i), "FileSystem", "",
                           "C:\\Program Files\\Vendor" + std::to_string(i / kNames) + "\\",
                           "agent" + std::to_string(i % 97) + ".exe", 0, false});
        }
        return out;
    }();
    return rows;
}

// The recorder touches frmscan, which may want the machine when it loads.
struct BenchMachine {
    orvex::platform::memory::MemoryPlatform machine;
    orvex::platform::ScopedPlatform installed{machine.view()};
};

void LoadItemList(int lines) {
    orvex::Definitions() = orvex::DefinitionTables{};
    for (int i = 0; i < lines; ++i)
        orvex::AppendLine(orvex::Definitions().ItemListDefs,
                          ThreatName(i) + "|" + std::to_string(i % 6) + "|ab");
    orvex::LngArray()[431] = "Threats found:";
}

void BM_VectorBaseline(benchmark::State& state) {
    const auto& findings = Findings();
    for (auto _ : state) {
        std::vector<orvex::ScumRow> rows;
        for (const auto& f : findings)
            rows.push_back({f.name, f.category, "Confirmed", f.location, f.item, 1, false});
        benchmark::DoNotOptimize(rows.data());
    }
    state.SetItemsProcessed(state.iterations() * kFindings);
}
BENCHMARK(BM_VectorBaseline)->Unit(benchmark::kMillisecond);

// Argument: the number of [ItemList] lines; the severity look-up walks them in file order.
void BM_ScumListDetailsAdd(benchmark::State& state) {
    BenchMachine machine;
    LoadItemList(static_cast<int>(state.range(0)));
    const auto& findings = Findings();
    const orvex::ScopedDefinitionLookup lookup;  // as a scan has
    for (auto _ : state) {
        orvex::ScumListOfRun().clear();
        orvex::List1OfRun().Clear();
        for (const auto& f : findings)
            orvex::ScumListDetailsAdd(f.name, f.category, f.location, f.item, f.level);
    }
    if (orvex::ScumListOfRun().count() != kFindings || orvex::App().ScumCount != kNames)
        state.SkipWithError("the findings were not all recorded");
    state.SetItemsProcessed(state.iterations() * kFindings);
}
BENCHMARK(BM_ScumListDetailsAdd)->Arg(kNames)->Arg(0)->Unit(benchmark::kMillisecond);

// The same findings reported a second time, as two scanners meeting one file do: every
// add is a duplicate.
void BM_ScumListDetailsAddDuplicates(benchmark::State& state) {
    BenchMachine machine;
    LoadItemList(kNames);
    const auto& findings = Findings();
    const orvex::ScopedDefinitionLookup lookup;  // as a scan has
    orvex::ScumListOfRun().clear();
    for (const auto& f : findings)
        orvex::ScumListDetailsAdd(f.name, f.category, f.location, f.item, f.level);
    for (auto _ : state) {
        for (const auto& f : findings)
            orvex::ScumListDetailsAdd(f.name, f.category, f.location, f.item, f.level);
    }
    if (orvex::ScumListOfRun().count() != kFindings) state.SkipWithError("a duplicate was added");
    state.SetItemsProcessed(state.iterations() * kFindings);
}
BENCHMARK(BM_ScumListDetailsAddDuplicates)->Unit(benchmark::kMillisecond);

}  // namespace
