// CleanCommand.cpp: orvex clean: the scan, the removal of everything found with backups,
// and what became of each finding.
#include <algorithm>
#include <array>
#include <iostream>
#include <nlohmann/json.hpp>

#include "Commands.h"
#include "app/CleanRunner.h"

namespace orvex::cli {
namespace {

void ShowRemovalProgress(std::int32_t done, std::int32_t total) {
    std::cout << "\rRemoving: " << done << " of " << total << " findings   " << std::flush;
}

nlohmann::json CleanJson(const HeadlessCleanResult& result) {
    nlohmann::json rows = nlohmann::json::array();
    for (const CleanedFinding& f : result.findings) {
        rows.push_back({{"name", f.row.name},
                        {"category", f.row.category},
                        {"level", f.row.level},
                        {"location", f.row.location},
                        {"item", f.row.item},
                        {"outcome", f.outcome}});
    }
    return {{"findings", rows},
            {"threats", result.scan.threats},
            {"restartNeeded", result.restartNeeded}};
}

std::string CleanTable(const HeadlessCleanResult& result) {
    if (result.findings.empty()) return "No threats found.\n";
    using Columns = std::array<std::string, 4>;
    std::vector<Columns> lines{{"NAME", "CATEGORY", "LOCATION", "OUTCOME"}};
    for (const CleanedFinding& f : result.findings)
        lines.push_back({f.row.name, f.row.category, f.row.location + f.row.item, f.outcome});
    std::array<std::size_t, 4> width{};
    for (const Columns& line : lines)
        for (std::size_t c = 0; c < width.size(); ++c)
            width[c] = std::max(width[c], line[c].size());
    std::string table;
    for (const Columns& line : lines) {
        for (std::size_t c = 0; c < width.size(); ++c)
            table += c + 1 < width.size()
                         ? line[c] + std::string(width[c] - line[c].size() + 2, ' ')
                         : line[c] + "\n";
    }
    if (result.restartNeeded) table += "A restart is needed to finish the removal.\n";
    return table;
}

}  // namespace

int Clean(const ScanOptions& o) {
    HeadlessScanRequest request;
    if (!FillScanRequest(o, request)) return kExitError;
    const bool terminal = StdoutIsTerminal();
    if (terminal) request.progress = ShowScanProgress;
    const HeadlessCleanResult result =
        RunHeadlessClean(request, terminal ? ShowRemovalProgress : nullptr);
    if (terminal) std::cout << "\r" << std::string(60, ' ') << "\r" << std::flush;
    if (result.scan.problem != ScanProblem::kNone) {
        std::cerr << "orvex: " << ScanProblemMessage(o, result.scan) << "\n";
        return kExitError;
    }
    if (o.json)
        std::cout << CleanJson(result).dump(2, ' ', false, nlohmann::json::error_handler_t::replace)
                  << "\n";
    else
        std::cout << CleanTable(result);
    std::cout.flush();
    return result.exitCode;
}

}  // namespace orvex::cli
