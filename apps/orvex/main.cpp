// main.cpp: orvex, the command line of Orvex Sentry: the engine without windows, for
// automation, definition authors and tests.
#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>

#include "Commands.h"
#include "platform/Failure.h"
#include "platform/Platform.h"

int main(int argc, char** argv) {
    using namespace orvex::cli;
    CLI::App app{"Orvex Sentry command line: scans, definitions and logs without windows."};
    // Paths like "/work/x" must stay arguments on Windows too; subcommands inherit this.
    app.allow_windows_style_options(false);
    app.require_subcommand(1);
    int exitCode = kExitClean;
    AddVersionCommand(app, exitCode);
    AddDefsCommands(app, exitCode);
    AddLogCommands(app, exitCode);
    AddScanCommand(app, exitCode);
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
    return exitCode;
}
