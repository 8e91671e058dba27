// LogFile.h: the scan log file Logged.txt: where it lies, the key of its records, and
// the reader that deciphers them.
#pragma once

#include <functional>
#include <string>

namespace orvex {

// App().AppPath + "\Logged.txt".
std::string LoggedTxtPath();

// The key of the log's records; joined at run time and never stored whole.
std::string LogKey();

// Hands each record of the log at `path` to `onRecord`, deciphered, or as the cipher's
// failure word ("ERR1", "ERR2") when the line is damaged. A record holds no delimiter, so
// each delimited field read is one line. Raises the file's failure when it can't be read.
void ReadScanLog(const std::string& path, const std::function<void(const std::string&)>& onRecord);

}  // namespace orvex
