// Commands.h: the commands of the orvex command line, one file each. Only main.cpp knows
// the parser: each command is a plain function of its options and returns the exit code.
#pragma once

#include <optional>
#include <string>

namespace orvex::cli {

// Exit codes: 0 clean, 1 threats found, 2 error.
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

int PrintVersion();
// orvex defs compile|dump: definition files for their authors.
int CompileDefinitions(const DefsCompileOptions& options);
int DumpDefinitions(const DefsDumpOptions& options);
// orvex log show: the deciphered scan log.
int ShowLog(const LogShowOptions& options);
// orvex scan: the whole scan without windows.
int Scan(const ScanOptions& options);

}  // namespace orvex::cli
