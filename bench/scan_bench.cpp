// scan_bench.cpp: the file scan of `orvex scan --path` on a generated tree, against a floor
// measured in the same run (a plain walk that MD5s the same files) and against clamscan
// with a digest database of the same MD5s. Rates are files of the tree per second.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <openssl/evp.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "CorpusGenerator.h"
#include "app/ScanRunner.h"
#include "platform/Platform.h"
#include "platform/posix/PosixFiles.h"
#include "platform/posix/PosixProcesses.h"
#include "platform/posix/PosixRegistry.h"
#include "platform/posix/PosixSystem.h"

namespace {

namespace fs = std::filesystem;
using orvex::bench::CorpusPaths;
using orvex::bench::CorpusPlan;

struct Corpus {
    CorpusPlan plan;
    CorpusPaths paths;
};

std::string Md5OfFile(const std::string& path) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) return "FILE NOT FOUND";
    std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> ctx(EVP_MD_CTX_new(), EVP_MD_CTX_free);
    EVP_DigestInit_ex(ctx.get(), EVP_md5(), nullptr);
    static char buffer[64 * 1024];
    ssize_t got;
    while ((got = ::read(fd, buffer, sizeof buffer)) > 0)
        EVP_DigestUpdate(ctx.get(), buffer, static_cast<std::size_t>(got));
    ::close(fd);
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    EVP_DigestFinal_ex(ctx.get(), digest, &length);
    static const char kHex[] = "0123456789abcdef";
    std::string text;
    for (unsigned int i = 0; i < length; ++i) {
        text.push_back(kHex[digest[i] >> 4]);
        text.push_back(kHex[digest[i] & 15]);
    }
    return text;
}

struct WalkCount {
    int files = 0;
    int hashed = 0;
};

// The floor: every file of the tree visited, the hashed extensions MD5'd.
WalkCount FloorWalk(const fs::path& tree) {
    WalkCount count;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(tree)) {
        if (!entry.is_regular_file()) continue;
        ++count.files;
        if (!orvex::bench::IsHashedName(entry.path().filename().string())) continue;
        ++count.hashed;
        benchmark::DoNotOptimize(Md5OfFile(entry.path().string()));
    }
    return count;
}

// Reads every file once so that every contender starts from the page cache.
void WarmPageCache(const fs::path& tree) {
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(tree))
        if (entry.is_regular_file()) benchmark::DoNotOptimize(Md5OfFile(entry.path().string()));
}

const Corpus& TheCorpus() {
    static const Corpus corpus = [] {
        Corpus c;
        const auto started = std::chrono::steady_clock::now();
        c.plan = orvex::bench::PlanCorpus(orvex::bench::CorpusSizeFromEnvironment());
        c.paths = orvex::bench::DefaultCorpusPaths(c.plan.size);
        const bool written = orvex::bench::EnsureCorpus(c.plan, c.paths);
        WarmPageCache(c.paths.tree());
        const double seconds =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
        std::cerr << "corpus " << c.paths.root.string() << ": " << c.plan.files.size()
                  << " files in " << c.plan.folders.size() << " folders, "
                  << c.plan.totalBytes / (1024 * 1024) << " MiB, " << c.plan.planted.size()
                  << " planted finds; " << (written ? "written" : "reused") << " and read in "
                  << seconds << " s\n";
        return c;
    }();
    return corpus;
}

// Seconds per pass of the floor, for the ratios of the other contenders.
double g_floorSeconds = 0;
double g_floorCpu = 0;
double g_orvexSeconds = 0;
double g_orvexCpu = 0;

// Files per second of wall time, and the ratio to the floor by wall time and by CPU time
// (the machine may be shared; CPU time is the steadier comparison then).
void SetRate(benchmark::State& state, double seconds, double cpu) {
    const double files = static_cast<double>(TheCorpus().plan.files.size());
    const double passes = static_cast<double>(state.iterations());
    state.counters["files/s"] = benchmark::Counter(files * passes, benchmark::Counter::kIsRate);
    state.counters["cpu_s"] = cpu / passes;
    if (g_floorSeconds > 0) state.counters["vs_floor"] = g_floorSeconds / (seconds / passes);
    if (g_floorCpu > 0 && cpu > 0) state.counters["vs_floor_cpu"] = g_floorCpu / (cpu / passes);
}

double ProcessCpuSeconds() {
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9;
}

// CPU seconds of the children that ended so far.
double ChildrenCpuSeconds() {
    rusage usage{};
    getrusage(RUSAGE_CHILDREN, &usage);
    auto seconds = [](const timeval& t) {
        return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) * 1e-6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

double Since(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void BM_Floor(benchmark::State& state) {
    const Corpus& corpus = TheCorpus();
    WalkCount count;
    double seconds = 0;
    double cpu = 0;
    for (auto _ : state) {
        const double cpuBefore = ProcessCpuSeconds();
        const auto start = std::chrono::steady_clock::now();
        count = FloorWalk(corpus.paths.tree());
        seconds += Since(start);
        cpu += ProcessCpuSeconds() - cpuBefore;
    }
    if (count.files != static_cast<int>(corpus.plan.files.size())) {
        state.SkipWithError("the floor walk did not see every file of the tree");
        return;
    }
    g_floorSeconds = seconds / static_cast<double>(state.iterations());
    g_floorCpu = cpu / static_cast<double>(state.iterations());
    state.counters["hashed"] = count.hashed;
    SetRate(state, seconds, cpu);
}

// The command line's platform, with a registry that is never saved: the scan starts from
// an empty registry every time and leaves the user's alone.
class BenchPlatform : public orvex::platform::OwnedPlatform {
  public:
    BenchPlatform() : registry_(""), system_(files_, files_.paths()), processes_(files_.paths()) {}
    orvex::platform::Platform view() override {
        return orvex::platform::Platform{&registry_, &files_, &processes_, &system_};
    }

  private:
    orvex::platform::PosixFiles files_;
    orvex::platform::PosixRegistry registry_;
    orvex::platform::PosixSystem system_;
    orvex::platform::PosixProcesses processes_;
};

std::string Engine(const fs::path& native) {
    const std::optional<std::string> path = orvex::platform::EnginePathFromNative(native.string());
    if (!path) throw std::runtime_error("no engine path for " + native.string());
    return *path;
}

using Finding = std::tuple<std::string, std::string, std::string>;  // location, item, threat

std::set<Finding> ExpectedFindings(const Corpus& corpus) {
    const std::string tree = Engine(corpus.paths.tree());
    std::set<Finding> expected;
    for (const orvex::bench::PlantedFile& f : corpus.plan.planted) {
        std::string folder = f.folder;
        for (char& c : folder)
            if (c == '/') c = '\\';
        expected.emplace(tree + "\\" + folder + "\\", f.name, f.threat);
    }
    return expected;
}

// Empty when the findings are exactly the planted files; else what differs.
std::string CompareFindings(const Corpus& corpus, const orvex::HeadlessScanResult& result) {
    std::set<Finding> found;
    for (const orvex::ScumRow& row : result.findings)
        found.emplace(row.location, row.item, row.name);
    const std::set<Finding> expected = ExpectedFindings(corpus);
    if (found == expected && result.findings.size() == expected.size()) return {};
    std::string report = "findings differ: " + std::to_string(result.findings.size()) + " rows, " +
                         std::to_string(expected.size()) + " planted";
    for (const Finding& f : found)
        if (!expected.count(f)) report += "; unexpected " + std::get<0>(f) + std::get<1>(f);
    for (const Finding& f : expected)
        if (!found.count(f)) report += "; missed " + std::get<0>(f) + std::get<1>(f);
    return report.substr(0, 600);
}

// When each stage of the scan was first seen, from the progress reports, in wall and CPU
// time.
class StageClock {
  public:
    void Start() {
        seen_.assign(1, Now("load"));  // the data loads come before the first stage
    }
    void Seen(std::string_view stage) {
        if (stage.empty()) return;  // after the last stage: counted with it
        for (const Mark& mark : seen_)
            if (mark.stage == stage) return;
        seen_.push_back(Now(std::string(stage)));
    }
    // Adds each stage's wall and CPU seconds to the totals.
    void AddTo(std::map<std::string, std::pair<double, double>>& total) const {
        const Mark end = Now("");
        for (std::size_t i = 0; i < seen_.size(); ++i) {
            const Mark& next = i + 1 < seen_.size() ? seen_[i + 1] : end;
            total[seen_[i].stage].first +=
                std::chrono::duration<double>(next.wall - seen_[i].wall).count();
            total[seen_[i].stage].second += next.cpu - seen_[i].cpu;
        }
    }

  private:
    struct Mark {
        std::string stage;
        std::chrono::steady_clock::time_point wall;
        double cpu = 0;
    };
    static Mark Now(std::string stage) {
        return Mark{std::move(stage), std::chrono::steady_clock::now(), ProcessCpuSeconds()};
    }
    std::vector<Mark> seen_;
};

void BM_OrvexScanPath(benchmark::State& state) {
    const Corpus& corpus = TheCorpus();
    BenchPlatform machine;
    orvex::platform::ScopedPlatform installed(machine.view());
    orvex::HeadlessScanRequest request;
    request.appPath = Engine(corpus.paths.app());
    request.dataFolder = Engine(corpus.paths.data());
    request.folder = Engine(corpus.paths.tree());
    StageClock clock;
    request.progress = [&](std::string_view stage, std::int32_t) { clock.Seen(stage); };
    orvex::HeadlessScanResult result;
    double seconds = 0;
    double cpu = 0;
    std::map<std::string, std::pair<double, double>> stages;  // wall, CPU
    for (auto _ : state) {
        fs::remove(corpus.paths.app() / "Logged.txt");
        const double cpuBefore = ProcessCpuSeconds();
        const auto start = std::chrono::steady_clock::now();
        clock.Start();
        result = orvex::RunHeadlessScan(request);
        seconds += Since(start);
        cpu += ProcessCpuSeconds() - cpuBefore;
        clock.AddTo(stages);
    }
    if (result.exitCode == 2) {
        state.SkipWithError(("scan failed: " + result.error).c_str());
        return;
    }
    if (const std::string differs = CompareFindings(corpus, result); !differs.empty()) {
        state.SkipWithError(differs.c_str());
        return;
    }
    const double passes = static_cast<double>(state.iterations());
    g_orvexSeconds = seconds / passes;
    g_orvexCpu = cpu / passes;
    state.counters["findings"] = static_cast<double>(result.findings.size());
    for (const auto& [stage, total] : stages) {
        state.counters[stage + "_s"] = total.first / passes;
        state.counters[stage + "_cpu_s"] = total.second / passes;
    }
    SetRate(state, seconds, cpu);
}

bool ClamscanInstalled() {
    return std::system("command -v clamscan >/dev/null 2>&1") == 0;
}

// Runs clamscan on the tree, its report in `output`; the exit status (1: something found).
int RunClamscan(const Corpus& corpus, const fs::path& output) {
    const std::string command = "clamscan -r --no-summary -d '" +
                                corpus.paths.clamDatabase().string() + "' '" +
                                corpus.paths.tree().string() + "' >'" + output.string() + "' 2>&1";
    const int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

int CountFound(const fs::path& output) {
    std::ifstream in(output);
    int found = 0;
    for (std::string line; std::getline(in, line);)
        if (line.size() >= 6 && line.compare(line.size() - 6, 6, " FOUND") == 0) ++found;
    return found;
}

void BM_Clamscan(benchmark::State& state) {
    if (!ClamscanInstalled()) {
        state.SkipWithError("clamscan is not installed (apt-get install clamav)");
        return;
    }
    const Corpus& corpus = TheCorpus();
    const fs::path output = corpus.paths.root / "clamscan.out";
    int status = 0;
    double seconds = 0;
    double cpu = 0;
    for (auto _ : state) {
        const double cpuBefore = ChildrenCpuSeconds();
        const auto start = std::chrono::steady_clock::now();
        status = RunClamscan(corpus, output);
        seconds += Since(start);
        cpu += ChildrenCpuSeconds() - cpuBefore;
    }
    if (status != 0 && status != 1) {
        state.SkipWithError("clamscan failed; see clamscan.out beside the corpus");
        return;
    }
    // clamscan hashes every file, so the text decoys with listed digests count too.
    const int expected = corpus.plan.size.digestPlants + corpus.plan.size.decoys;
    const int found = CountFound(output);
    state.counters["findings"] = found;
    if (found != expected) {
        state.SkipWithError(
            ("clamscan found " + std::to_string(found) + ", expected " + std::to_string(expected))
                .c_str());
        return;
    }
    // How many times faster the orvex scan was.
    const double passes = static_cast<double>(state.iterations());
    if (g_orvexSeconds > 0) state.counters["orvex_x"] = seconds / passes / g_orvexSeconds;
    if (g_orvexCpu > 0) state.counters["orvex_x_cpu"] = cpu / passes / g_orvexCpu;
    SetRate(state, seconds, cpu);
}

int Passes(const char* variable, int fallback) {
    const char* text = std::getenv(variable);
    return text && *text ? std::max(1, std::atoi(text)) : fallback;
}

}  // namespace

BENCHMARK(BM_Floor)
    ->Unit(benchmark::kSecond)
    ->UseRealTime()
    ->Iterations(Passes("ORVEX_BENCH_PASSES", 3));
BENCHMARK(BM_OrvexScanPath)
    ->Unit(benchmark::kSecond)
    ->UseRealTime()
    ->Iterations(Passes("ORVEX_BENCH_PASSES", 3));
BENCHMARK(BM_Clamscan)->Unit(benchmark::kSecond)->UseRealTime()->Iterations(1);
