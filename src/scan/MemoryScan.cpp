// MemoryScan.cpp: tests the image of each running process against the definitions, ends
// the processes of checked rows, and removes the surveillance agent at start-up.
#include "scan/MemoryScan.h"

#include <cstdlib>

#include "core/AppState.h"
#include "core/ErrorHandler.h"
#include "core/Text.h"
#include "definitions/DefinitionTables.h"
#include "platform/Failure.h"
#include "platform/FileHelper.h"
#include "scan/FileScan.h"
#include "scan/Recorder.h"
#include "scan/RunProc.h"
#include "scan/ScanLogWrite.h"
#include "ui/UiHost.h"

namespace orvex {
namespace {

constexpr const char* kCategoryMemory = "Memory Resident";
constexpr const char* kAgentDigestA = "29a38b50b102abc3b818100fc836868d";
constexpr const char* kAgentDigestB = "eed8e968a40f91e20800fee118d0b718";
constexpr const char* kAgentFolderMark = "spyagent";
constexpr const char* kAgentRemovedText = "Spytech has been removed from memory.";

// One entry of the process list taken apart.
struct ProcessImage {
    std::string fileName;  // lower-case
    std::string folder;    // with its closing backslash
};

// Splits "pid|path" or "path"; `pid` keeps its value for an entry without an id.
ProcessImage SplitEntry(const std::string& entry, std::uint32_t& pid) {
    std::string path = entry;
    const std::size_t bar = entry.find('|');
    if (bar != std::string::npos) {
        pid = static_cast<std::uint32_t>(std::strtoul(entry.substr(0, bar).c_str(), nullptr, 10));
        path = entry.substr(bar + 1);
    }
    if (path.find('~') != std::string::npos) {
        platform::FileHelper helper;
        std::string longName = helper.LongName(path);
        if (longName.size() >= path.size()) path = std::move(longName);
    }
    return {LCase(platform::FileHelper::FilePart(path)), platform::FileHelper::FolderPart(path)};
}

void EndProcess(clsRunProc& procs, std::uint32_t pid, const std::string& fileName) {
    if (pid != 0) {
        procs.KillProcessById(pid);
    } else {
        bool found = false;
        procs.KillApp(fileName, found);
    }
}

void KillCheckedRows(clsRunProc& procs, std::uint32_t pid, const ProcessImage& image) {
    const ScumList& rows = ScumListOfRun();
    for (std::int32_t i = rows.count(); i >= 1; --i) {
        const ScumRow& row = rows.row(i);
        if (row.checked && row.category == kCategoryMemory && row.item == image.fileName) {
            EndProcess(procs, pid, image.fileName);
            return;
        }
    }
}

void ReportFound(const ProcessImage& image, const std::string& threat) {
    std::int32_t listIndex = 0;
    ScanLogWrite(image.folder, image.fileName, "found", threat, kCategoryMemory, VbFalse,
                 listIndex);
}

enum class PassResult { NotFound, Found, Stopped };

// The digest pass over the sorted digest index; only for an image still on the disk.
PassResult DigestPass(const ProcessImage& image) {
    const std::string path = image.folder + image.fileName;
    if (!platform::FileHelper().FileExists(path)) return PassResult::NotFound;
    const std::string md5 = MD5File(path);
    const int first = md5.empty() ? 0 : Asc(md5);
    const auto& index = Definitions().Md5Index;
    for (std::size_t i = 0; i < index.size(); ++i) {
        ui::DoEvents();
        if (IsTrue(App().StopRequested)) return PassResult::Stopped;
        if (md5.empty()) continue;
        if (first < index[i].FirstChar) break;
        if (md5 == index[i].Hash) {
            ReportFound(image, index[i].Name);
            return PassResult::Found;
        }
    }
    return PassResult::NotFound;
}

// The name pass: the whole name index, one row at most per process.
void NamePass(const ProcessImage& image) {
    if (image.fileName.empty()) return;
    const auto& index = Definitions().FileIndex;
    for (std::size_t i = 0; i < index.size(); ++i) {
        if (index[i].FileName != image.fileName) continue;
        const std::int32_t code = ExclusionRoutine(image.fileName, image.folder, index[i].Name);
        if (code == 0 || code == 1) {
            ReportFound(image, index[i].Name);
            return;
        }
    }
}

// Every process but the first that the list names, in order.
std::vector<std::string> ProcessesPastTheFirst(clsRunProc& procs) {
    std::vector<std::string> list = procs.RunningProcs();
    if (!list.empty()) list.erase(list.begin());
    return list;
}

}  // namespace

bool IsSurveillanceAgentImage(const std::string& md5, const std::string& folder) {
    if (md5 == kAgentDigestA || md5 == kAgentDigestB) return true;
    return InStr(folder, kAgentFolderMark, Compare::Text) > 0;
}

void ScanMemory(VbBool& killMode) {
    std::int32_t listIndex = 0;
    if (!IsTrue(killMode))
        ResumeNext([&] { ScanLogWrite("", "", "Start M", "", "", VbTrue, listIndex); });
    clsRunProc procs;
    if (procs.OS() == oskind::kUnknown) return;
    std::vector<std::string> lbProcess;
    ResumeNext([&] { lbProcess = ProcessesPastTheFirst(procs); });

    std::uint32_t pid = 0;
    for (const std::string& entry : lbProcess) {
        if (entry.empty()) continue;
        ProcessImage image;
        ResumeNext([&] { image = SplitEntry(entry, pid); });
        if (IsTrue(killMode)) {
            ResumeNext([&] { KillCheckedRows(procs, pid, image); });
            continue;
        }
        PassResult digest = PassResult::NotFound;
        ResumeNext([&] { digest = DigestPass(image); });
        if (digest == PassResult::Stopped) return;
        if (digest == PassResult::NotFound) ResumeNext([&] { NamePass(image); });
    }
}

void RemoveSurveillanceAgent() {
    clsRunProc procs;
    std::vector<std::string> entries;
    ResumeNext([&] { entries = ProcessesPastTheFirst(procs); });

    std::uint32_t pid = 0;
    for (const std::string& entry : entries) {
        if (entry.empty()) continue;
        ProcessImage image;
        bool agent = false;
        ResumeNext([&] { image = SplitEntry(entry, pid); });
        ResumeNext([&] {
            agent = IsSurveillanceAgentImage(MD5File(image.folder + image.fileName), image.folder);
        });
        if (!agent) continue;
        // Logged for the record; no row is added.
        std::int32_t listIndex = 0;
        ResumeNext([&] {
            ScanLogWrite(image.folder, image.fileName, "found", kAgentRemovedText, "found", VbTrue,
                         listIndex);
        });
        ResumeNext([&] { EndProcess(procs, pid, image.fileName); });
    }
}

}  // namespace orvex
