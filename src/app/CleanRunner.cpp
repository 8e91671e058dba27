// CleanRunner.cpp: the command line's clean. The outcome of each row is read from what the
// removal reports for it and from whether the row is still in the list afterwards.
#include "app/CleanRunner.h"

#include "core/AppState.h"
#include "pages/ResultsPage.h"
#include "platform/FileHelper.h"
#include "platform/Platform.h"
#include "scan/Recorder.h"
#include "scan/RemovalProgress.h"
#include "ui/HeadlessHost.h"

namespace orvex {
namespace {

constexpr int kExitRemoved = 1;
constexpr int kExitIncomplete = 3;
constexpr const char* kMemoryResident = "Memory Resident";

// Notes the word each row gets, by the row the pass is at.
class RowOutcomes : public RemovalProgress {
  public:
    RowOutcomes(std::size_t rows, const std::function<void(std::int32_t, std::int32_t)>& removed)
        : words(rows), removed_(removed) {}

    void RowStarting(std::int32_t row) override {
        current_ = row;
        const auto total = static_cast<std::int32_t>(words.size());
        if (removed_) removed_(total - row, total);
    }
    void RowDeleted() override { note("delete"); }
    void ManualRemovalNeeded() override { note("Manual Intervention Required"); }

    std::vector<std::string> words;  // words[i] for row i + 1

  private:
    void note(const char* word) {
        if (current_ >= 1 && static_cast<std::size_t>(current_) <= words.size())
            words[current_ - 1] = word;
    }
    std::int32_t current_ = 0;
    const std::function<void(std::int32_t, std::int32_t)>& removed_;
};

// A row with no word: gone from the list means its file was not found; still there, its
// process was ended ("Memory Resident") or its delete failed.
std::string OutcomeWithoutWord(const ScumRow& row) {
    if (!ScumListOfRun().holds(row.name, row.category, row.location, row.item, row.level))
        return "File In List Not Found";
    return row.category == kMemoryResident ? "kept" : "failed";
}

// Start-up makes the backup folder; without it every backup copy would fail and the
// removal would go on with no backups at all.
void PrepareBackupFolder() {
    const std::string& folder = App().BackupFolder;
    if (!platform::FileHelper().FolderExists(folder)) platform::Files().createFolder(folder);
}

bool Removed(const std::string& outcome) {
    return outcome == "delete" || outcome == "File In List Not Found" || outcome == "kept";
}

}  // namespace

HeadlessCleanResult RunHeadlessClean(
    const HeadlessScanRequest& request,
    const std::function<void(std::int32_t, std::int32_t)>& removed) {
    HeadlessCleanResult result;
    result.scan = RunHeadlessScan(request);
    result.exitCode = result.scan.exitCode;
    if (result.scan.problem != ScanProblem::kNone || result.scan.findings.empty()) return result;

    PrepareBackupFolder();
    ui::HeadlessHost host;
    ui::ScopedHost installed(host);
    host.DefaultAnswer(ui::msgbox::kNo);
    RowOutcomes outcomes(result.scan.findings.size(), removed);
    {
        ScopedReport<RemovalProgress> reported(outcomes);
        frmresults().cmdBlock_Click();
    }
    bool allRemoved = true;
    for (std::size_t i = 0; i < result.scan.findings.size(); ++i) {
        const ScumRow& row = result.scan.findings[i];
        std::string outcome = outcomes.words[i];
        if (outcome.empty()) outcome = OutcomeWithoutWord(row);
        allRemoved = allRemoved && Removed(outcome);
        result.findings.push_back({row, std::move(outcome)});
    }
    result.restartNeeded = IsTrue(App().RestartNeeded);
    result.exitCode = allRemoved && !result.restartNeeded ? kExitRemoved : kExitIncomplete;
    return result;
}

}  // namespace orvex
