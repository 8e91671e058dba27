// ScanRunner.h: the whole scan without windows, for the command line: the data loads of
// start-up, the scan page driven by the headless host, and the findings as a table.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "scan/Recorder.h"

namespace orvex {

struct HeadlessScanRequest {
    // Engine paths. `appPath` is the program's folder (Logged.txt, Exclude.dat and the
    // language file live there, and it is never scanned); no closing backslash.
    std::string appPath;
    // The definition folder; empty takes the registry's DataPath, as start-up does.
    std::string dataFolder;
    // When set, only this folder is walked, in place of the drives.
    std::string folder;
    // Called at most every 100 ms while the scan counts items: the stage and the items
    // scanned so far.
    std::function<void(std::string_view stage, std::int32_t items)> progress;
};

// What kept the scan from starting; the caller words it in the terms the user gave.
enum class ScanProblem {
    kNone,
    kNoDataPath,           // no definition folder asked for and no DataPath in the registry
    kNoDataFolder,         // the definition folder does not exist
    kNoDefinitions,        // it holds no ovsdef.dat
    kUnusableDefinitions,  // too few file names: the program keeps its scan off
    kNoProgramFolder,
    kNoScanFolder,
};

struct HeadlessScanResult {
    int exitCode = 0;  // 0 nothing found, 1 threats found, 2 error
    ScanProblem problem = ScanProblem::kNone;
    std::string error;  // the problem in engine paths
    // The definition folder used, closed by a backslash: the registry's when none was asked.
    std::string dataFolder;
    std::vector<ScumRow> findings;
    std::int32_t threats = 0;  // distinct threat names
    std::int32_t itemsScanned = 0;
};

// Runs the scan as the scan button does, with no user: message boxes are answered No, so
// the scan changes nothing on the machine.
HeadlessScanResult RunHeadlessScan(const HeadlessScanRequest& request);

// The findings as aligned columns: name, category, level, location, item.
std::string FindingsTable(const std::vector<ScumRow>& findings);

}  // namespace orvex
