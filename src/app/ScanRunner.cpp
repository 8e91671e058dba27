// ScanRunner.cpp: the command line's scan: start-up's data loads, then ScanItems on the
// headless host, then the findings.
#include "app/ScanRunner.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <functional>
#include <utility>

#include "core/AppState.h"
#include "core/Config.h"
#include "definitions/DefinitionLoader.h"
#include "definitions/DefinitionTables.h"
#include "pages/ScanPage.h"
#include "platform/FileHelper.h"
#include "platform/Platform.h"
#include "platform/RegistryHelper.h"
#include "stores/AllowedItems.h"
#include "ui/HeadlessHost.h"
#include "ui/Language.h"

namespace orvex {
namespace {

// The progress line is redrawn at most this often.
constexpr std::chrono::milliseconds kProgressInterval{100};

// The headless host that also shows progress as the scan yields.
class ProgressHost : public ui::HeadlessHost {
  public:
    using Progress = std::function<void(std::string_view, std::int32_t)>;
    explicit ProgressHost(Progress progress) : progress_(std::move(progress)) {}

    void DoEvents() override {
        HeadlessHost::DoEvents();
        Tick();
    }
    std::int64_t DoEvents(std::int64_t count, const std::function<bool()>& stopped) override {
        const std::int64_t done = HeadlessHost::DoEvents(count, stopped);
        Tick();
        return done;
    }

  private:
    void Tick() {
        // The clock is read only every so many yields: a load yields per line.
        if (!progress_ || (ticks_++ % kTicksPerClockRead) != 0) return;
        const auto now = std::chrono::steady_clock::now();
        if (now - shown_ < kProgressInterval) return;
        shown_ = now;
        progress_(CurrentScanStage(), App().ItemsScanned);
    }

    static constexpr std::uint32_t kTicksPerClockRead = 64;
    Progress progress_;
    std::uint32_t ticks_ = 0;
    std::chrono::steady_clock::time_point shown_{};
};

std::string WithoutClosingBackslash(std::string path) {
    while (path.size() > 3 && path.back() == '\\')
        path.pop_back();
    return path;
}

// DataPath + "\", unconditionally, as start-up forms it.
std::string RegistryDataFolder() {
    platform::RegistryHelper registry;
    registry.RootKey(platform::Hive::LocalMachine);
    registry.KeyPath(config::kProductKey);
    return registry.GetValue("DataPath") + "\\";
}

void SetFolders(const HeadlessScanRequest& request) {
    AppState& app = App();
    app.AppPath = WithoutClosingBackslash(request.appPath);
    app.BackupFolder = app.AppPath + "\\Backup";
    app.DataFolder = request.dataFolder.empty()
                         ? RegistryDataFolder()
                         : WithoutClosingBackslash(request.dataFolder) + "\\";
    app.WindowsFolder = platform::Sys().windowsFolder();
    app.SystemFolder = platform::Sys().systemFolder();
}

// Loads what the main window's actions load before a scan may start; false with a
// reason when the definitions are not usable.
bool LoadData(std::string& error) {
    LoadLanguageAtStart();
    LoadExclusion();
    const std::string definitions = App().DataFolder + "ovsdef.dat";
    if (!platform::FileHelper().FileExists(definitions)) {
        error = "no definition file " + definitions;
        return false;
    }
    LoadReferenceFiles();
    if (Definitions().FileDefs.Count < 2) {
        error = "the definitions in " + App().DataFolder + " are not usable";
        return false;
    }
    return true;
}

}  // namespace

HeadlessScanResult RunHeadlessScan(const HeadlessScanRequest& request) {
    HeadlessScanResult result;
    ProgressHost host(request.progress);
    ui::ScopedHost installed(host);
    host.DefaultAnswer(ui::msgbox::kNo);
    SetFolders(request);
    if (!LoadData(result.error)) {
        result.exitCode = 2;
        return result;
    }
    const std::string folder = WithoutClosingBackslash(request.folder);
    if (!folder.empty() && !platform::FileHelper().FolderExists(folder)) {
        result.error = "no folder " + request.folder;
        result.exitCode = 2;
        return result;
    }
    // A new scan, as the rescan commands start one.
    App().StopRequested = VbFalse;
    FrmScan& page = frmscan();
    if (!folder.empty()) page.Drive1.Items = {folder};
    page.ScanItems();

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
