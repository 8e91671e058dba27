// DefsCommands.cpp: the defs subcommands of orvex.
#include "Commands.h"

namespace orvex::cli {

void AddDefsCommands(CLI::App&, int&) {}

}  // namespace orvex::cli
