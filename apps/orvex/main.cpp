// main.cpp: orvex, the command line of Orvex Sentry: the engine without windows, for
// automation, definition authors and tests. The only file that knows the parser: it keeps
// the others cheap to compile.
#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>

#include "Commands.h"
#include "platform/Failure.h"
#include "platform/Platform.h"

namespace orvex::cli {
namespace {

// Every command's options, filled by the parser; the command that runs sets the exit code.
struct CommandLine {
    DefsCompileOptions compile;
    DefsDumpOptions dump;
    LogShowOptions log;
    ScanOptions scan;
    ScanOptions clean;
    BackupsOptions backups;
    int exitCode = kExitClean;
};

void AddVersionCommand(CLI::App& app, CommandLine& line) {
    auto* version = app.add_subcommand("version", "Print the program's version");
    version->callback([&line] { line.exitCode = PrintVersion(); });
}

void AddDefsCommands(CLI::App& app, CommandLine& line) {
    auto* defs = app.add_subcommand("defs", "Definition files for their authors");
    defs->require_subcommand(1);

    auto* compile = defs->add_subcommand(
        "compile", "Encipher a plain source (one definition line per text line) into a .dat file");
    compile->add_option("SOURCE", line.compile.source, "plain source, CR LF or LF line ends")
        ->required();
    compile->add_option("OUT", line.compile.output, "the .dat file to write")->required();
    compile->callback([&line] { line.exitCode = CompileDefinitions(line.compile); });

    auto* dump = defs->add_subcommand("dump", "Print the deciphered lines of a .dat file");
    dump->add_option("FILE", line.dump.file, "the .dat file to read")->required();
    dump->add_flag("--json", line.dump.json, "print {\"lines\": [...], \"complete\": bool}");
    dump->callback([&line] { line.exitCode = DumpDefinitions(line.dump); });
}

void AddLogCommands(CLI::App& app, CommandLine& line) {
    auto* log = app.add_subcommand("log", "Read the scan log");
    log->require_subcommand(1);
    auto* show = log->add_subcommand(
        "show", "Print the deciphered records of Logged.txt; damaged lines show as ERR1 or ERR2");
    show->add_option("FILE", line.log.file,
                     "The log file (default: Logged.txt in the program's folder)");
    show->callback([&line] { line.exitCode = ShowLog(line.log); });
}

void AddScanOptions(CLI::App* scan, ScanOptions& o) {
    scan->add_option("--data", o.data,
                     "definition folder (ovsdef.dat, ovsstatic.dat); default: the registry's "
                     "DataPath, as the program reads it");
    scan->add_option("--path", o.path, "walk only this folder, in place of the drives");
    scan->add_option("--app-dir", o.appDir,
                     "the program's folder: Logged.txt is written there, Exclude.dat and the "
                     "language file are read there, and it is never scanned (default: the "
                     "folder of this executable)");
}

void AddScanCommand(CLI::App& app, CommandLine& line) {
    auto* scan = app.add_subcommand(
        "scan",
        "Run the whole scan (processes, registry, drives) without windows and print what it "
        "found. Exit code 0: nothing found, 1: threats found, 2: error. Nothing is removed, "
        "and questions the scan would ask are answered No. Logged.txt and Exclude.dat are "
        "those of the program's folder: the folder of this executable unless --app-dir "
        "names another.");
    AddScanOptions(scan, line.scan);
    scan->add_flag("--json", line.scan.json,
                   "print {\"findings\": [{name, category, level, location, item}], "
                   "\"threats\": n, \"itemsScanned\": n}");
    scan->callback([&line] { line.exitCode = Scan(line.scan); });
}

void AddCleanCommand(CLI::App& app, CommandLine& line) {
    auto* clean = app.add_subcommand(
        "clean",
        "Run the same scan as `scan`, then remove everything it found as the results page's "
        "remove button does: the Winsock catalog first, running processes, then each item "
        "after a backup into the program folder's Backup folder (`orvex backups` puts them "
        "back). Exit code 0: nothing found, 1: all removed, 3: something remains or needs a "
        "restart, 2: error.");
    AddScanOptions(clean, line.clean);
    clean->add_flag("--json", line.clean.json,
                    "print {\"findings\": [{name, category, level, location, item, outcome}], "
                    "\"threats\": n, \"restartNeeded\": bool}");
    clean->callback([&line] { line.exitCode = Clean(line.clean); });
}

void AddBackupsCommands(CLI::App& app, CommandLine& line) {
    auto* backups = app.add_subcommand("backups", "The backups that removals made");
    backups->require_subcommand(1);
    BackupsOptions& o = line.backups;
    const auto appDir = [&o](CLI::App* command) {
        command->add_option("--app-dir", o.appDir,
                            "the program's folder, holding Backup.Dat (default: the folder of "
                            "this executable)");
    };
    auto* list = backups->add_subcommand("list", "Print the backups of Backup.Dat");
    appDir(list);
    list->add_flag("--json", o.json,
                   "print {\"backups\": [{date, kind, oldLocation, oldName, newLocation, "
                   "newName, threat}]}");
    list->callback([&line] { line.exitCode = ListBackupsCommand(line.backups); });
    const auto action = [&](const char* name, const char* help, int (*run)(const BackupsOptions&)) {
        auto* command = backups->add_subcommand(name, help);
        appDir(command);
        command->add_option("THREAT", o.threats, "threat names, in any case");
        command->add_flag("--all", o.all, "every threat");
        command->callback([&line, run] { line.exitCode = run(line.backups); });
    };
    action("restore", "Put the items of these threats back, as the restore button does",
           RestoreBackups);
    action("delete", "Throw the backups of these threats away, as the delete button does",
           DeleteBackups);
}

}  // namespace
}  // namespace orvex::cli

int main(int argc, char** argv) {
    using namespace orvex::cli;
    CLI::App app{
        "Orvex Sentry command line: scans, removals, backups, definitions and logs without "
        "windows."};
    // Paths like "/work/x" must stay arguments on Windows too; subcommands inherit this.
    app.allow_windows_style_options(false);
    app.require_subcommand(1);
    CommandLine line;
    AddVersionCommand(app, line);
    AddDefsCommands(app, line);
    AddLogCommands(app, line);
    AddScanCommand(app, line);
    AddCleanCommand(app, line);
    AddBackupsCommands(app, line);
    try {
        auto host = orvex::platform::MakeHostPlatform();
        orvex::platform::ScopedPlatform installed(host->view());
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        return app.exit(e) == 0 ? kExitClean : kExitError;
    } catch (const orvex::Failure& f) {
        std::cerr << "orvex: " << f.what() << " (failure " << f.number() << ")\n";
        return kExitError;
    } catch (const std::exception& e) {
        std::cerr << "orvex: " << e.what() << "\n";
        return kExitError;
    }
    return line.exitCode;
}
