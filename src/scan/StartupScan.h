// StartupScan.h: the scans of the Run keys, the Uninstall list and the SharedDlls list.
#pragma once

namespace orvex {

// Tests each Run value of HKLM, then HKCU, against StartupDefs and the digest index.
void StartupRegistry();
// Reports the Uninstall subkeys that AddRemoveDefs lists.
void AddRemoveRegistry();
// Reports the SharedDlls entries whose file has a listed digest or name.
void SharedDLLRegistry();

}  // namespace orvex
