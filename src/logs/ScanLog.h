// ScanLog.h: the enciphered scan log Logged.txt: one record for each action word.
#pragma once

#include <string>

#include "core/TextFile.h"
#include "logs/LogFile.h"

namespace orvex {

// The action word of a finding that is on the allowed list.
inline constexpr const char* kExcludedWord = "Included on Exclude List";

// Opens Logged.txt for appending and writes the record of `action` (matched
// case-sensitively; a word without a record writes nothing). The file is handed back open:
// the record reaches the disk when the caller closes it. Failures reach the caller.
TextFile WriteScanLogRecord(const std::string& action, const std::string& location,
                            const std::string& item, const std::string& name);

}  // namespace orvex
