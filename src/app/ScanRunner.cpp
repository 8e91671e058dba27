// ScanRunner.cpp: the command line's scan: start-up's data loads, then ScanItems on the
// headless host, then the findings.
#include "app/ScanRunner.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <functional>

#include "core/AppState.h"
#include "core/Config.h"
#include "definitions/DefinitionLoader.h"
#include "definitions/LoadReport.h"
#include "pages/ScanPage.h"
#include "platform/FileHelper.h"
#include "platform/Platform.h"
#include "platform/RegistryHelper.h"
#include "scan/ScanProgress.h"
#include "stores/AllowedItems.h"
#include "ui/HeadlessHost.h"
#include "ui/Language.h"

namespace orvex {
namespace {

// The progress line is redrawn at most this often.
constexpr std::chrono::milliseconds kProgressInterval{100};

// The command line's view of a running scan: the terminal line, redrawn now and then.
class TerminalProgress : public ScanProgress {
  public:
    using Show = std::function<void(std::string_view, std::int32_t)>;
    explicit TerminalProgress(const Show& show) : show_(show) {}

    void ItemsScanned(const std::string& message, std::int32_t items) override {
        (void)message;  // the language's text; the stage names the step without it
        // The file walk reports every file: the clock is read only every so many reports.
        if (!show_ || (reports_++ % kReportsPerClockRead) != 0) return;
        const auto now = std::chrono::steady_clock::now();
        if (now - shown_ < kProgressInterval) return;
        shown_ = now;
        show_(CurrentScanStage(), items);
    }

  private:
    static constexpr std::uint32_t kReportsPerClockRead = 64;
    const Show& show_;
    std::uint32_t reports_ = 0;
    std::chrono::steady_clock::time_point shown_{};
};

// Whether the definition load found ovsdef.dat and let the scan start.
class LoadOutcome : public LoadReport {
  public:
    void DefinitionFileRead() override { found = true; }
    void ScanAllowed() override { allowed = true; }
    bool found = false;
    bool allowed = false;
};

std::string WithoutClosingBackslash(std::string path) {
    while (path.size() > 3 && path.back() == '\\')
        path.pop_back();
    return path;
}

std::string RegistryDataPath() {
    platform::RegistryHelper registry;
    registry.RootKey(platform::Hive::LocalMachine);
    registry.KeyPath(config::kProductKey);
    return registry.GetValue("DataPath");
}

// Sets the folders of the run; the problem of the first one that is missing.
ScanProblem SetFolders(const HeadlessScanRequest& request) {
    AppState& app = App();
    app.AppPath = WithoutClosingBackslash(request.appPath);
    app.BackupFolder = app.AppPath + "\\Backup";
    // DataPath + "\", unconditionally, as start-up forms it.
    const std::string data = request.dataFolder.empty()
                                 ? RegistryDataPath() + "\\"
                                 : WithoutClosingBackslash(request.dataFolder) + "\\";
    app.DataFolder = data;
    app.WindowsFolder = platform::Sys().windowsFolder();
    app.SystemFolder = platform::Sys().systemFolder();
    platform::FileHelper files;
    if (data == "\\") return ScanProblem::kNoDataPath;
    if (!files.FolderExists(app.AppPath)) return ScanProblem::kNoProgramFolder;
    if (!files.FolderExists(WithoutClosingBackslash(data))) return ScanProblem::kNoDataFolder;
    const std::string folder = WithoutClosingBackslash(request.folder);
    if (!folder.empty() && !files.FolderExists(folder)) return ScanProblem::kNoScanFolder;
    return ScanProblem::kNone;
}

// Loads what the main window's actions load before a scan may start.
ScanProblem LoadData() {
    LoadLanguageAtStart();
    LoadExclusion();
    LoadOutcome outcome;
    {
        ScopedReport<LoadReport> reported(outcome);
        LoadReferenceFiles();
    }
    if (!outcome.found) return ScanProblem::kNoDefinitions;
    if (!outcome.allowed) return ScanProblem::kUnusableDefinitions;
    return ScanProblem::kNone;
}

// The problem in engine paths, for callers with no user to word it for.
std::string ProblemText(ScanProblem problem, const HeadlessScanRequest& request) {
    const std::string& data = App().DataFolder;
    switch (problem) {
        case ScanProblem::kNoDataPath:
            return "no definition folder and no DataPath";
        case ScanProblem::kNoDataFolder:
            return "no folder " + data;
        case ScanProblem::kNoDefinitions:
            return "no ovsdef.dat in " + data;
        case ScanProblem::kUnusableDefinitions:
            return "the definitions in " + data + " are not usable";
        case ScanProblem::kNoProgramFolder:
            return "no folder " + App().AppPath;
        case ScanProblem::kNoScanFolder:
            return "no folder " + request.folder;
        case ScanProblem::kNone:
            break;
    }
    return {};
}

HeadlessScanResult Refused(ScanProblem problem, const HeadlessScanRequest& request) {
    HeadlessScanResult result;
    result.exitCode = 2;
    result.problem = problem;
    result.error = ProblemText(problem, request);
    result.dataFolder = App().DataFolder;
    return result;
}

}  // namespace

HeadlessScanResult RunHeadlessScan(const HeadlessScanRequest& request) {
    ui::HeadlessHost host;
    ui::ScopedHost installed(host);
    host.DefaultAnswer(ui::msgbox::kNo);
    if (const ScanProblem problem = SetFolders(request); problem != ScanProblem::kNone)
        return Refused(problem, request);
    if (const ScanProblem problem = LoadData(); problem != ScanProblem::kNone)
        return Refused(problem, request);
    // A new scan, as the rescan commands start one.
    App().StopRequested = VbFalse;
    FrmScan& page = frmscan();
    const std::string folder = WithoutClosingBackslash(request.folder);
    if (!folder.empty()) page.Drive1.Items = {folder};
    TerminalProgress progress(request.progress);
    {
        ScopedReport<ScanProgress> reported(progress);
        page.ScanItems();
    }

    HeadlessScanResult result;
    result.dataFolder = App().DataFolder;
    for (const ScumRow& row : ScumListOfRun())
        result.findings.push_back(row);
    result.threats = App().ScumCount;
    result.itemsScanned = App().ItemsScanned;
    result.exitCode = result.findings.empty() ? 0 : 1;
    return result;
}

std::string FindingsTable(const std::vector<ScumRow>& findings) {
    if (findings.empty()) return "No threats found.\n";
    using Columns = std::array<std::string, 5>;
    std::vector<Columns> lines{{"NAME", "CATEGORY", "LEVEL", "LOCATION", "ITEM"}};
    for (const ScumRow& row : findings)
        lines.push_back({row.name, row.category, row.level, row.location, row.item});
    std::array<std::size_t, 5> width{};
    for (const Columns& line : lines)
        for (std::size_t c = 0; c < width.size(); ++c)
            width[c] = std::max(width[c], line[c].size());
    std::string table;
    for (const Columns& line : lines) {
        std::string text;
        for (std::size_t c = 0; c < width.size(); ++c) {
            text += line[c];
            if (c + 1 < width.size()) text += std::string(width[c] - line[c].size() + 2, ' ');
        }
        table += text + "\n";
    }
    return table;
}

}  // namespace orvex
