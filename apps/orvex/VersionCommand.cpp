// VersionCommand.cpp: orvex version.
#include <iostream>

#include "Commands.h"
#include "core/Version.h"

namespace orvex::cli {

void AddVersionCommand(CLI::App& app, int& exitCode) {
    auto* version = app.add_subcommand("version", "Print the program's version");
    version->callback([&exitCode] {
        std::cout << "Orvex Sentry " << VersionText() << "\n";
        exitCode = kExitClean;
    });
}

}  // namespace orvex::cli
