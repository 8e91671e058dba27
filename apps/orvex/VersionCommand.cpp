// VersionCommand.cpp: orvex version.
#include <iostream>

#include "Commands.h"
#include "core/Version.h"

namespace orvex::cli {

int PrintVersion() {
    std::cout << "Orvex Sentry " << VersionText() << "\n";
    return kExitClean;
}

}  // namespace orvex::cli
