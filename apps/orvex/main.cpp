// main.cpp: orvex, the command line of Orvex Sentry: the engine without windows, for
// automation, definition authors and tests.
#include <CLI/CLI.hpp>
#include <iostream>

#include "core/Version.h"

namespace {

constexpr int kExitError = 2;

void AddVersionCommand(CLI::App& app) {
    auto* version = app.add_subcommand("version", "Print the program's version");
    version->callback([] { std::cout << "Orvex Sentry " << orvex::VersionText() << "\n"; });
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app{"Orvex Sentry command line: scans, definitions and logs without windows."};
    app.require_subcommand(1);
    AddVersionCommand(app);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        const int code = app.exit(e);
        return code == 0 ? 0 : kExitError;
    }
    return 0;
}
