// ScanCommand.cpp: orvex scan.
#include "Commands.h"

namespace orvex::cli {

void AddScanCommand(CLI::App&, int&) {}

}  // namespace orvex::cli
