// LogCommands.cpp: the log subcommands of orvex.
#include "Commands.h"

namespace orvex::cli {

void AddLogCommands(CLI::App&, int&) {}

}  // namespace orvex::cli
