// LogCommands.cpp: orvex log show [FILE]: the scan log, deciphered, record by record.
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "Commands.h"
#include "logs/LogFile.h"
#include "platform/Failure.h"
#include "platform/FileHelper.h"
#include "platform/Platform.h"

namespace orvex::cli {
namespace {

// Logged.txt beside the program, as the program itself writes it.
std::string DefaultLogPath() {
    const std::string exe = platform::Sys().executablePath();
    return platform::FileHelper::FolderPart(exe) + "Logged.txt";
}

// The record with plain line ends, closed by one.
void PrintRecord(const std::string& record) {
    std::string text;
    text.reserve(record.size() + 1);
    for (std::size_t i = 0; i < record.size(); ++i) {
        if (record[i] == '\r' && i + 1 < record.size() && record[i + 1] == '\n') continue;
        text += record[i];
    }
    if (text.empty() || text.back() != '\n') text += '\n';
    std::cout << text;
}

int ShowLog(const std::string& file) {
    const std::optional<std::string> path = file.empty() ? DefaultLogPath() : EnginePath(file);
    const std::string shown = file.empty() ? path.value_or("") : file;
    if (!path) {
        std::cerr << "orvex: cannot read " << shown << ": not a path the program can reach\n";
        return kExitError;
    }
    try {
        ReadScanLog(*path, PrintRecord);
    } catch (const Failure& f) {
        std::cerr << "orvex: cannot read " << shown << ": " << f.what() << "\n";
        return kExitError;
    }
    std::cout.flush();
    return kExitClean;
}

}  // namespace

void AddLogCommands(CLI::App& app, int& exitCode) {
    auto* log = app.add_subcommand("log", "Read the scan log");
    log->require_subcommand(1);
    auto* show = log->add_subcommand(
        "show", "Print the deciphered records of Logged.txt; damaged lines show as ERR1 or ERR2");
    auto file = std::make_shared<std::string>();
    show->add_option("FILE", *file, "The log file (default: Logged.txt in the program's folder)");
    show->callback([&exitCode, file] { exitCode = ShowLog(*file); });
}

}  // namespace orvex::cli
