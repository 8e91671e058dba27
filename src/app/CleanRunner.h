// CleanRunner.h: the scan and the removal without windows, for the command line: the
// results page's remove button pressed on everything the scan found.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "app/ScanRunner.h"

namespace orvex {

struct CleanedFinding {
    ScumRow row;
    // The action word logged for the row; "kept" for a "Memory Resident" row, whose
    // process was ended while the row stays; "failed" where the delete failed.
    std::string outcome;
};

struct HeadlessCleanResult {
    // 0 nothing found, 1 all removed with no restart needed, 3 something remains or
    // needs a restart, 2 error.
    int exitCode = 0;
    HeadlessScanResult scan;
    std::vector<CleanedFinding> findings;
    bool restartNeeded = false;
};

// Scans as RunHeadlessScan does, then removes every finding with backups on, as the remove
// button of the results page does. `removed` is told each row the removal comes to: the
// rows done so far and their total.
HeadlessCleanResult RunHeadlessClean(
    const HeadlessScanRequest& request,
    const std::function<void(std::int32_t done, std::int32_t total)>& removed = {});

}  // namespace orvex
