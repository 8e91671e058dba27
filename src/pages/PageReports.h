// PageReports.h: the pages as the engine's audience: frmscan shows the scan's progress,
// frmmain the definition load, frmremoval the removal's steps.
#pragma once

namespace orvex {

// Installs the pages' implementations of the reporting interfaces, as the program runs.
void InstallPageReports();

}  // namespace orvex
