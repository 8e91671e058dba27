// cipher_bench.cpp: Decrypt of stored definition lines (~100 bytes each) against a plain
// copy of the same lines, so the cost of the cipher shows as a ratio.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "definitions/Cipher.h"

namespace {

// Stored lines as a definition file holds them: records of about 63 characters, which
// grow to about 100 bytes once keyed, stretched and marked.
const std::vector<std::string>& StoredLines() {
    static const std::vector<std::string> lines = [] {
        std::vector<std::string> out;
        for (int i = 0; i < 1000; ++i) {
            std::string record = "Spyware.Name" + std::to_string(i) +
                                 "|C:\\Program Files\\Vendor\\agent" + std::to_string(i % 97) +
                                 ".exe|3|Adware|";
            record.resize(63, 'x');
            out.push_back(orvex::Encrypt(record, orvex::kDefinitionKey));
        }
        return out;
    }();
    return lines;
}

void BM_CopyBaseline(benchmark::State& state) {
    const auto& lines = StoredLines();
    std::string text, plain;
    std::size_t i = 0;
    for (auto _ : state) {
        text.assign(lines[i]);
        plain.assign(text, 0, text.size() - 2);
        benchmark::DoNotOptimize(plain.data());
        if (++i == lines.size()) i = 0;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_CopyBaseline);

void BM_Decrypt(benchmark::State& state) {
    const auto& lines = StoredLines();
    std::string text, plain;
    std::size_t i = 0;
    for (auto _ : state) {
        text.assign(lines[i]);
        orvex::Decrypt(text, orvex::kDefinitionKey, plain);
        benchmark::DoNotOptimize(plain.data());
        if (++i == lines.size()) i = 0;
    }
    state.counters["stored_bytes"] = static_cast<double>(lines[0].size());
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_Decrypt);

// The classic form, returning a new text each time.
void BM_DecryptReturning(benchmark::State& state) {
    const auto& lines = StoredLines();
    std::string text;
    std::size_t i = 0;
    for (auto _ : state) {
        text.assign(lines[i]);
        std::string plain = orvex::Decrypt(text, orvex::kDefinitionKey);
        benchmark::DoNotOptimize(plain.data());
        if (++i == lines.size()) i = 0;
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_DecryptReturning);

}  // namespace
