// ScanCommand.cpp: orvex scan: the program's whole scan without windows, its findings as a
// table or as JSON, and the exit code of the outcome.
#include <cstdio>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "Commands.h"
#include "app/ScanRunner.h"
#include "platform/Failure.h"
#include "platform/FileHelper.h"
#include "platform/Platform.h"
#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace orvex::cli {
namespace {

struct ScanOptions {
    std::string data, path, appDir;
    bool json = false;
};

bool StdoutIsTerminal() {
#ifdef _WIN32
    return _isatty(_fileno(stdout)) != 0;
#else
    return isatty(fileno(stdout)) != 0;
#endif
}

void ShowProgress(std::string_view stage, std::int32_t items) {
    std::cout << "\rScanning " << (stage.empty() ? "..." : stage) << ": " << items
              << " items scanned   " << std::flush;
}

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

// Fills the request's folders from the options; false with a message on a bad one.
bool FillRequest(const ScanOptions& o, HeadlessScanRequest& request) {
    const std::pair<const std::string*, std::string*> folders[] = {
        {&o.data, &request.dataFolder}, {&o.path, &request.folder}, {&o.appDir, &request.appPath}};
    for (const auto& [native, engine] : folders) {
        if (native->empty()) continue;
        const std::optional<std::string> path = EnginePath(*native);
        if (!path) {
            std::cerr << "orvex: " << *native << ": not a path the program can reach\n";
            return false;
        }
        *engine = *path;
    }
    if (request.appPath.empty())
        request.appPath = platform::FileHelper::FolderPart(platform::Sys().executablePath());
    return true;
}

int Scan(const ScanOptions& o) {
    HeadlessScanRequest request;
    if (!FillRequest(o, request)) return kExitError;
    const bool terminal = StdoutIsTerminal();
    if (terminal) request.progress = ShowProgress;
    const HeadlessScanResult result = RunHeadlessScan(request);
    if (terminal) std::cout << "\r" << std::string(60, ' ') << "\r" << std::flush;
    if (result.exitCode == kExitError) {
        std::cerr << "orvex: " << result.error << "\n";
        return kExitError;
    }
    if (o.json) {
        std::cout << FindingsJson(result).dump(2, ' ', false,
                                               nlohmann::json::error_handler_t::replace)
                  << "\n";
    } else {
        std::cout << FindingsTable(result.findings);
    }
    std::cout.flush();
    return result.exitCode;
}

}  // namespace

void AddScanCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<ScanOptions>();
    auto* scan = app.add_subcommand(
        "scan",
        "Run the whole scan (processes, registry, drives) without windows and print what it "
        "found. Exit code 0: nothing found, 1: threats found, 2: error. Nothing is removed, "
        "and questions the scan would ask are answered No. Logged.txt and Exclude.dat are "
        "those of the program's folder: the folder of this executable unless --app-dir "
        "names another.");
    scan->add_option("--data", options->data,
                     "definition folder (ovsdef.dat, ovsstatic.dat); default: the registry's "
                     "DataPath, as the program reads it");
    scan->add_option("--path", options->path, "walk only this folder, in place of the drives");
    scan->add_option("--app-dir", options->appDir,
                     "the program's folder: Logged.txt is written there, Exclude.dat and the "
                     "language file are read there, and it is never scanned (default: the "
                     "folder of this executable)");
    scan->add_flag("--json", options->json,
                   "print {\"findings\": [{name, category, level, location, item}], "
                   "\"threats\": n, \"itemsScanned\": n}");
    scan->callback([options, &exitCode] {
        try {
            exitCode = Scan(*options);
        } catch (const Failure& f) {
            std::cerr << "orvex: " << f.what() << " (failure " << f.number() << ")\n";
            exitCode = kExitError;
        }
    });
}

}  // namespace orvex::cli
