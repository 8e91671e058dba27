// RemovalDriver.h: turns the checked rows of the ScumList into changes on the machine:
// the Winsock repair first, then the processes of checked "Memory Resident" rows, then
// every other checked row from the last to the first, each backed up before it goes.
#pragma once

#include <string>

#include "platform/Registry.h"

namespace orvex {

// Checks every row whose threat is `name` (compared in lower case) unless it is empty,
// clears RestartNeeded and runs BlockSelected. An empty list does nothing at all.
void BlockAll(const std::string& name);

// The pass over the checked rows. Failures are passed over statement by statement; what
// happened is told through the list, the scan log and the flags of App().
void BlockSelected();

// Writes "http://" back into a value that the browser needs, for the two threats whose
// removal deletes one.
void SetDefaultRegistryValues(const std::string& threat, platform::Hive root,
                              const std::string& keyPath, const std::string& valueName);

}  // namespace orvex
