// registry_bench.cpp: the registry stage with 10,000 CLSID definitions over a memory
// registry of 200,000 keys spread over the component places, against baselines in the same
// run: the plain enumeration of those keys, and the same key look-ups made directly on the
// back-end.
#include <benchmark/benchmark.h>

#include <iostream>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "DefinitionSetGenerator.h"
#include "core/AppState.h"
#include "definitions/DefinitionTables.h"
#include "platform/memory/MemoryPlatform.h"
#include "scan/ComScan.h"
#include "scan/Recorder.h"
#include "scan/RegistryScan.h"
#include "ui/Form.h"
#include "ui/HeadlessHost.h"

namespace {

using orvex::platform::Hive;

constexpr int kDefinitions = 10000;
constexpr int kKeys = 200000;
constexpr int kPlantedKeys = 200;
constexpr int kPlantedValues = 100;
constexpr const char* kLogged = "C:\\Orvex\\Logged.txt";

using Finding = std::pair<std::string, std::string>;  // location, item

struct Machine {
    orvex::platform::memory::MemoryPlatform platform;
    orvex::platform::ScopedPlatform installed{platform.view()};
    orvex::ui::HeadlessHost host;
    orvex::ui::ScopedHost hosted{host};
    std::vector<std::string> clsidLines;  // "threat|clsid"
    std::set<Finding> expected;
    std::vector<std::pair<Hive, std::string>> lookups;  // what the scan looks for, as keys

    Machine() {
        orvex::App().AppPath = "C:\\Orvex";
        orvex::App().DataFolder = "C:\\Orvex\\Data\\";
        platform.files.addFolder("C:\\Orvex\\Data");
        orvex::ClsidIntialize();
        orvex::bench::detail::Random random(11);
        auto& registry = platform.registry;
        // Keys that no definition names, spread evenly over the places.
        const int filler = kKeys - kPlantedKeys;
        for (int i = 0; i < filler; ++i) {
            const orvex::ComKeyRow& place = orvex::ComKeyTable[static_cast<std::size_t>(i % 21)];
            registry.addKey(place.root, Below(place, orvex::bench::detail::Clsid(random)));
        }
        for (int i = 0; i < kDefinitions; ++i) {
            const std::string clsid = orvex::bench::detail::Clsid(random);
            clsidLines.push_back("Bench.Com." + std::to_string(i) + "|" + clsid);
            Plant(i, clsid);
            for (const orvex::ComKeyRow& place : orvex::ComKeyTable)
                lookups.emplace_back(place.root, Below(place, clsid));
        }
    }

    static std::string Below(const orvex::ComKeyRow& place, const std::string& clsid) {
        return place.path.empty() ? clsid : place.path + "\\" + clsid;
    }

    // The first definitions are planted: as a key in one place, or as a value name.
    void Plant(int i, const std::string& clsid) {
        const orvex::ComKeyRow& place = orvex::ComKeyTable[static_cast<std::size_t>(i % 21)];
        const std::string location = place.rootName + "\\" + place.path + "\\";
        if (i < kPlantedKeys) {
            platform.registry.addKey(place.root, Below(place, clsid));
            expected.emplace(location, clsid);
        } else if (i < kPlantedKeys + kPlantedValues) {
            platform.registry.setString(place.root, place.path, clsid, "planted");
            expected.emplace(location, clsid);
        }
    }

    // The definitions as the loader leaves them, with nothing but the CLSID table.
    void LoadDefinitions() const {
        orvex::Definitions() = orvex::DefinitionTables{};
        for (const std::string& line : clsidLines)
            orvex::AppendLine(orvex::Definitions().ClsidDefs, line);
    }

    static void FreshRun() {
        orvex::ScumListOfRun().clear();
        orvex::List1OfRun().Clear();
        orvex::App().StopRequested = orvex::VbFalse;
        orvex::App().ItemsScanned = 0;
    }
};

Machine& TheMachine() {
    static Machine machine;
    return machine;
}

std::set<Finding> Found() {
    std::set<Finding> found;
    for (const orvex::ScumRow& row : orvex::ScumListOfRun())
        found.emplace(row.location, row.item);
    return found;
}

// The registry stage as the scan driver runs it, on a table of CLSID definitions only.
void BM_RegistryStageClsids(benchmark::State& state) {
    Machine& machine = TheMachine();
    machine.LoadDefinitions();
    orvex::ui::ResetForms();
    const std::int64_t yieldsBefore = machine.host.Yields();
    for (auto _ : state) {
        state.PauseTiming();
        machine.FreshRun();
        if (machine.platform.files.fileExists(kLogged)) machine.platform.files.remove(kLogged);
        state.ResumeTiming();
        orvex::ScumRegistry();
    }
    const std::set<Finding> found = Found();
    if (found != machine.expected ||
        orvex::ScumListOfRun().count() != static_cast<int>(machine.expected.size())) {
        state.SkipWithError(("found " + std::to_string(orvex::ScumListOfRun().count()) +
                             " rows, planted " + std::to_string(machine.expected.size()))
                                .c_str());
        return;
    }
    state.counters["findings"] = static_cast<double>(found.size());
    state.counters["yields"] = static_cast<double>(machine.host.Yields() - yieldsBefore) /
                               static_cast<double>(state.iterations());
}

// Baseline: every key of the places listed once, straight from the back-end.
void BM_EnumerateKeys(benchmark::State& state) {
    Machine& machine = TheMachine();
    std::vector<orvex::platform::RegSubKey> keys;
    std::size_t total = 0;
    for (auto _ : state) {
        total = 0;
        for (const orvex::ComKeyRow& place : orvex::ComKeyTable) {
            keys.clear();
            machine.platform.registry.listSubKeys(place.root, place.path, keys);
            total += keys.size();
        }
        benchmark::DoNotOptimize(total);
    }
    state.counters["keys"] = static_cast<double>(total);
}

// Baseline: the scan's 210,000 key look-ups, made directly on the back-end.
void BM_KeyLookups(benchmark::State& state) {
    Machine& machine = TheMachine();
    int hits = 0;
    for (auto _ : state) {
        hits = 0;
        for (const auto& [root, path] : machine.lookups)
            hits += machine.platform.registry.keyExists(root, path) ? 1 : 0;
        benchmark::DoNotOptimize(hits);
    }
    state.counters["lookups"] = static_cast<double>(machine.lookups.size());
    state.counters["hits"] = hits;
}

}  // namespace

BENCHMARK(BM_EnumerateKeys)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_KeyLookups)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RegistryStageClsids)->Unit(benchmark::kMillisecond)->UseRealTime();
