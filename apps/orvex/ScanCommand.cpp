// ScanCommand.cpp: orvex scan: the program's whole scan without windows, its findings as a
// table or as JSON, and the exit code of the outcome.
#include <cstdio>
#include <iostream>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "Commands.h"
#include "app/ScanRunner.h"
#include "core/Config.h"
#include "platform/FileHelper.h"
#include "platform/Platform.h"
#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace orvex::cli {
namespace {

#ifdef _WIN32
constexpr char kSeparator = '\\';
#else
constexpr char kSeparator = '/';
#endif

}  // namespace

bool StdoutIsTerminal() {
#ifdef _WIN32
    return _isatty(_fileno(stdout)) != 0;
#else
    return isatty(fileno(stdout)) != 0;
#endif
}

void ShowScanProgress(std::string_view stage, std::int32_t items) {
    std::cout << "\rScanning " << (stage.empty() ? "..." : stage) << ": " << items
              << " items scanned   " << std::flush;
}

namespace {

nlohmann::json FindingsJson(const HeadlessScanResult& result) {
    nlohmann::json rows = nlohmann::json::array();
    for (const ScumRow& row : result.findings) {
        rows.push_back({{"name", row.name},
                        {"category", row.category},
                        {"level", row.level},
                        {"location", row.location},
                        {"item", row.item}});
    }
    return {{"findings", rows}, {"threats", result.threats}, {"itemsScanned", result.itemsScanned}};
}

}  // namespace

bool FillScanRequest(const ScanOptions& o, HeadlessScanRequest& request) {
    struct Folder {
        const char* option;
        const std::string& typed;
        std::string& engine;
    };
    const Folder folders[] = {{"--data", o.data, request.dataFolder},
                              {"--path", o.path, request.folder},
                              {"--app-dir", o.appDir, request.appPath}};
    for (const Folder& folder : folders) {
        if (folder.typed.empty()) continue;
        const std::optional<std::string> path = EnginePath(folder.typed);
        if (!path) {
            std::cerr << "orvex: " << folder.option << " " << folder.typed
                      << ": not a path the program can reach\n";
            return false;
        }
        folder.engine = *path;
    }
    if (request.appPath.empty())
        request.appPath = platform::FileHelper::FolderPart(platform::Sys().executablePath());
    return true;
}

namespace {

// `folder` as typed, joined with `file` in the same path form.
std::string Joined(std::string folder, const std::string& file) {
    while (folder.size() > 1 && (folder.back() == '/' || folder.back() == '\\'))
        folder.pop_back();
    return folder + kSeparator + file;
}

// Where the definitions were looked for, in the user's terms.
std::string DataFolderNamed(const ScanOptions& o, const HeadlessScanResult& result) {
    if (!o.data.empty()) return "--data " + o.data;
    std::string registered = result.dataFolder;
    if (!registered.empty() && registered.back() == '\\') registered.pop_back();
    return "the registry's DataPath " + registered;
}

}  // namespace

std::string ScanProblemMessage(const ScanOptions& o, const HeadlessScanResult& result) {
    const std::string data = DataFolderNamed(o, result);
    const std::string dataHint = "; give the folder holding ovsdef.dat with --data DIR";
    switch (result.problem) {
        case ScanProblem::kNoDataPath:
#ifdef _WIN32
            return "no definition folder: give the folder holding ovsdef.dat with --data DIR, "
                   "or set DataPath under HKEY_LOCAL_MACHINE\\" +
                   std::string(config::kProductKey);
#else
            return "no definition folder: give the folder holding ovsdef.dat with --data DIR";
#endif
        case ScanProblem::kNoDataFolder:
            return data + ": no such folder" + (o.data.empty() ? dataHint : "");
        case ScanProblem::kNoDefinitions:
            return data + ": no ovsdef.dat in this folder" +
                   (o.data.empty() ? dataHint
                                   : "; compile one with `orvex defs compile SOURCE " +
                                         Joined(o.data, "ovsdef.dat") + "`");
        case ScanProblem::kUnusableDefinitions:
            return data +
                   ": the definitions name fewer than two files under [Files], so the "
                   "scan stays off";
        case ScanProblem::kNoScanFolder:
            return "--path " + o.path + ": no such folder";
        case ScanProblem::kNoProgramFolder:
            return o.appDir.empty() ? "the program's folder is missing"
                                    : "--app-dir " + o.appDir + ": no such folder";
        case ScanProblem::kNone:
            break;
    }
    return "the scan did not start";
}

namespace {

void PrintFindings(const HeadlessScanResult& result, bool json) {
    if (json) {
        std::cout << FindingsJson(result).dump(2, ' ', false,
                                               nlohmann::json::error_handler_t::replace)
                  << "\n";
    } else {
        std::cout << FindingsTable(result.findings);
    }
    std::cout.flush();
}

}  // namespace

int Scan(const ScanOptions& o) {
    HeadlessScanRequest request;
    if (!FillScanRequest(o, request)) return kExitError;
    const bool terminal = StdoutIsTerminal();
    if (terminal) request.progress = ShowScanProgress;
    const HeadlessScanResult result = RunHeadlessScan(request);
    if (terminal) std::cout << "\r" << std::string(60, ' ') << "\r" << std::flush;
    if (result.problem != ScanProblem::kNone) {
        std::cerr << "orvex: " << ScanProblemMessage(o, result) << "\n";
        return kExitError;
    }
    PrintFindings(result, o.json);
    return result.exitCode;
}

}  // namespace orvex::cli
