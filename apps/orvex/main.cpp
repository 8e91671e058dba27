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

void AddScanCommand(CLI::App& app, CommandLine& line) {
    auto* scan = app.add_subcommand(
        "scan",
        "Run the whole scan (processes, registry, drives) without windows and print what it "
        "found. Exit code 0: nothing found, 1: threats found, 2: error. Nothing is removed, "
        "and questions the scan would ask are answered No. Logged.txt and Exclude.dat are "
        "those of the program's folder: the folder of this executable unless --app-dir "
        "names another.");
    ScanOptions& o = line.scan;
    scan->add_option("--data", o.data,
                     "definition folder (ovsdef.dat, ovsstatic.dat); default: the registry's "
                     "DataPath, as the program reads it");
    scan->add_option("--path", o.path, "walk only this folder, in place of the drives");
    scan->add_option("--app-dir", o.appDir,
                     "the program's folder: Logged.txt is written there, Exclude.dat and the "
                     "language file are read there, and it is never scanned (default: the "
                     "folder of this executable)");
    scan->add_flag("--json", o.json,
                   "print {\"findings\": [{name, category, level, location, item}], "
                   "\"threats\": n, \"itemsScanned\": n}");
    scan->callback([&line] { line.exitCode = Scan(line.scan); });
}

}  // namespace
}  // namespace orvex::cli

int main(int argc, char** argv) {
    using namespace orvex::cli;
    CLI::App app{"Orvex Sentry command line: scans, definitions and logs without windows."};
    // Paths like "/work/x" must stay arguments on Windows too; subcommands inherit this.
    app.allow_windows_style_options(false);
    app.require_subcommand(1);
    CommandLine line;
    AddVersionCommand(app, line);
    AddDefsCommands(app, line);
    AddLogCommands(app, line);
    AddScanCommand(app, line);
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
