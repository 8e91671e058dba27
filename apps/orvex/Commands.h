// Commands.h: the commands of the orvex command line, one file each. Only main.cpp knows
// the parser: each command is a plain function of its options and returns the exit code.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/ScanRunner.h"

namespace orvex::cli {

// Exit codes: 0 clean, 1 threats found (and, for clean, all removed), 2 error, 3 something
// remains or needs a restart.
inline constexpr int kExitClean = 0;
inline constexpr int kExitThreats = 1;
inline constexpr int kExitError = 2;

// The engine path of a file or folder named on the command line; none when the program
// cannot reach it.
std::optional<std::string> EnginePath(const std::string& nativePath);

struct DefsCompileOptions {
    std::string source, output;
};
struct DefsDumpOptions {
    std::string file;
    bool json = false;
};
struct LogShowOptions {
    std::string file;  // empty: Logged.txt in the program's folder
};
struct ScanOptions {
    std::string data, path, appDir;  // as typed; empty when not given
    bool json = false;
};

struct BackupsOptions {
    std::string appDir;
    std::vector<std::string> threats;
    bool all = false;
    bool json = false;
};

// Shared by the commands that scan.
bool StdoutIsTerminal();
// The terminal's progress line of a scan.
void ShowScanProgress(std::string_view stage, std::int32_t items);
// Fills the request's folders from the options; false with a message on a bad one.
bool FillScanRequest(const ScanOptions& options, HeadlessScanRequest& request);
// Why the scan did not start and what to do, naming the folders as the user gave them.
std::string ScanProblemMessage(const ScanOptions& options, const HeadlessScanResult& result);

int PrintVersion();
// orvex defs compile|dump: definition files for their authors.
int CompileDefinitions(const DefsCompileOptions& options);
int DumpDefinitions(const DefsDumpOptions& options);
// orvex log show: the deciphered scan log.
int ShowLog(const LogShowOptions& options);
// orvex scan: the whole scan without windows.
int Scan(const ScanOptions& options);
// orvex clean: the scan, then the removal of everything it found, with backups.
int Clean(const ScanOptions& options);
// orvex backups list|restore|delete: the restore window's list and buttons.
int ListBackupsCommand(const BackupsOptions& options);
int RestoreBackups(const BackupsOptions& options);
int DeleteBackups(const BackupsOptions& options);

}  // namespace orvex::cli
