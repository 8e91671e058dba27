// Deferred.h: destroying a file, handing a file that is in use to the next start of the
// system, and the restart itself.
#pragma once

#include <cstdint>
#include <string>

namespace orvex {

// Overwrites the first bytes of a file and deletes it. When that fails (the file is in
// use), the delete is left to the next start where the system can: true on the NT family,
// false on the 9x family (queued all the same) and on systems without a way. Sets
// RestartNeeded when a delete was queued.
bool WipeFile(const std::string& path);

// Adds the line "destination=source", both in short form, at the end of WININIT.INI.
void Create9xReboot(const std::string& source, const std::string& destination);

// Asks the system for the text of its last error, which is kept nowhere.
void RetrieveError();

// Enables the shutdown privilege for this process.
void AdjustToken();

// Ends the session; the restart is always forced.
void ExitWindows(std::int32_t flags);

}  // namespace orvex
