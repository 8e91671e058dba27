// Commands.h: the subcommands of the orvex command line, one file each.
#pragma once

#include <CLI/CLI.hpp>
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

// Each adds its subcommand; the callback sets `exitCode`.
void AddVersionCommand(CLI::App& app, int& exitCode);
// orvex defs compile|dump: definition files for their authors.
void AddDefsCommands(CLI::App& app, int& exitCode);
// orvex log show: the deciphered scan log.
void AddLogCommands(CLI::App& app, int& exitCode);
// orvex scan: the whole scan without windows.
void AddScanCommand(CLI::App& app, int& exitCode);

}  // namespace orvex::cli
