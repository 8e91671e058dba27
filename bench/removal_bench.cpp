// removal_bench.cpp: the removal pass over 10,000 file rows and 10,000 registry rows with
// backups on, on the POSIX back-end with real files in a temporary folder, against a
// baseline in the same run that only copies and deletes the same files and deletes the
// same keys.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "core/AppState.h"
#include "platform/Platform.h"
#include "platform/RegistryHelper.h"
#include "platform/posix/PosixFiles.h"
#include "platform/posix/PosixProcesses.h"
#include "platform/posix/PosixRegistry.h"
#include "platform/posix/PosixSystem.h"
#include "removal/RemovalDriver.h"
#include "scan/Recorder.h"
#include "ui/Form.h"
#include "ui/HeadlessHost.h"

namespace {

namespace fs = std::filesystem;
using orvex::platform::Hive;

constexpr int kRows = 10000;
const std::string kBad = "C:\\bad\\";
const std::string kKeys = "Software\\Bench";

// A temporary folder as the machine's "C:\", a registry kept in memory only, and the
// program folder with its backup folder.
struct Machine {
    fs::path root = fs::temp_directory_path() / ("orvex-removal-bench-" + std::to_string(getpid()));
    orvex::platform::PosixFiles files{MakeRoot(root)};
    orvex::platform::PosixRegistry registry{""};
    orvex::platform::PosixSystem system{files, files.paths()};
    orvex::platform::PosixProcesses processes{files.paths()};
    orvex::platform::ScopedPlatform installed{{&registry, &files, &processes, &system}};
    orvex::ui::HeadlessHost host;
    orvex::ui::ScopedHost hosted{host};

    Machine() {
        orvex::App().AppPath = "C:\\Orvex";
        orvex::App().DataFolder = "C:\\Orvex\\";
        orvex::App().BackupFolder = "C:\\Orvex\\Backup";
        files.createFolder("C:\\Orvex");
        files.createFolder("C:\\Orvex\\Backup");
        files.createFolder("C:\\bad");
    }
    ~Machine() {
        orvex::ui::ResetForms();
        fs::remove_all(root);
    }
    static std::string MakeRoot(const fs::path& root) {
        fs::create_directories(root);
        return root.string();
    }

    void Plant() {
        orvex::platform::RegistryHelper reg;
        reg.RootKey(Hive::LocalMachine);
        for (int i = 0; i < kRows; ++i) {
            const std::string n = std::to_string(i);
            auto file = files.open(kBad + "f" + n + ".dll", orvex::platform::OpenMode::Write);
            const std::string bytes = "MZ bench file " + n;
            file->write(bytes.data(), bytes.size());
            reg.KeyPath(kKeys + "\\k" + n);
            reg.SetValue("Path", kBad + "f" + n + ".dll");
        }
    }
    void EmptyBackups() {
        for (const auto& entry : fs::directory_iterator(root / "Orvex" / "Backup"))
            fs::remove(entry.path());
        fs::remove(root / "Orvex" / "Backup.Dat");
    }
};

void AddRows() {
    orvex::ScumList& rows = orvex::ScumListOfRun();
    rows.clear();
    for (int i = 0; i < kRows; ++i) {
        const std::string n = std::to_string(i);
        rows.add({"Bench", "FileSystem", "Confirmed", kBad, "f" + n + ".dll", 0, true});
        rows.add({"Bench", "Registry(Key)", "Confirmed", "HKEY_LOCAL_MACHINE\\" + kKeys + "\\",
                  "k" + n, 0, true});
    }
}

void BM_RemovalWithBackups(benchmark::State& state) {
    Machine machine;
    for (auto _ : state) {
        state.PauseTiming();
        machine.Plant();
        machine.EmptyBackups();
        AddRows();
        orvex::App().BackupEnabled = orvex::VbTrue;
        orvex::App().RemovalCancelled = orvex::VbFalse;
        state.ResumeTiming();
        orvex::BlockAll("");
    }
    state.counters["rows left"] = orvex::ScumListOfRun().count();
}

void BM_Baseline_CopyAndDelete(benchmark::State& state) {
    Machine machine;
    for (auto _ : state) {
        state.PauseTiming();
        machine.Plant();
        machine.EmptyBackups();
        state.ResumeTiming();
        orvex::platform::RegistryHelper reg;
        reg.RootKey(Hive::LocalMachine);
        for (int i = 0; i < kRows; ++i) {
            const std::string n = std::to_string(i);
            const std::string path = kBad + "f" + n + ".dll";
            machine.files.copy(path, "C:\\Orvex\\Backup\\" + n + ".asw", true);
            machine.files.remove(path);
            reg.KeyPath(kKeys + "\\k" + n);
            reg.DeleteKey("");
        }
    }
}

BENCHMARK(BM_Baseline_CopyAndDelete)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(BM_RemovalWithBackups)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace
