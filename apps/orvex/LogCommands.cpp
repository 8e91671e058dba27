// LogCommands.cpp: orvex log show [FILE]: the scan log, deciphered, record by record.
#include <iostream>
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

// Prints the log at `path`; `shown` names it in messages.
int PrintLog(const std::string& path, const std::string& shown) {
    try {
        ReadScanLog(path, PrintRecord);
    } catch (const Failure& f) {
        std::cerr << "orvex: cannot read " << shown << ": " << f.what() << "\n";
        return kExitError;
    }
    std::cout.flush();
    return kExitClean;
}

}  // namespace

int ShowLog(const LogShowOptions& o) {
    if (o.file.empty()) {
        const std::string path = DefaultLogPath();
        if (platform::FileHelper().FileExists(path)) return PrintLog(path, "Logged.txt");
        std::cerr << "orvex: no scan log yet: `orvex scan` writes Logged.txt beside orvex (or "
                     "in the folder of its --app-dir); name another log with `orvex log show "
                     "FILE`\n";
        return kExitError;
    }
    const std::optional<std::string> path = EnginePath(o.file);
    if (!path) {
        std::cerr << "orvex: " << o.file << ": not a path the program can reach\n";
        return kExitError;
    }
    if (!platform::FileHelper().FileExists(*path)) {
        std::cerr << "orvex: " << o.file << ": no such file\n";
        return kExitError;
    }
    return PrintLog(*path, o.file);
}

}  // namespace orvex::cli
