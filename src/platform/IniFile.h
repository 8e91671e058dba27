// IniFile.h: GetPrivateProfileString/WritePrivateProfileString semantics over any
// FileSystem, for the back-ends that have no profile API of their own.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/FileSystem.h"

namespace orvex::platform {

// The value of `key` in `[section]` of `file`: sections and keys compare without regard to
// case, the first match counts, blanks around the value go, and one pair of enclosing
// quotes ("..." or '...') too. A missing file, section or key gives `defaultValue` without
// its trailing blanks. The result is cut to capacity - 1 characters (capacity 0 gives "").
std::string ReadProfileString(FileSystem& files, std::string_view section, std::string_view key,
                              std::string_view defaultValue, std::size_t capacity,
                              std::string_view file);

// Sets `key` in `[section]`, creating the file, the section (at the end) or the key (after
// the section's last entry) as needed; the rest of the file stays as it was. False when the
// file cannot be written.
bool WriteProfileString(FileSystem& files, std::string_view section, std::string_view key,
                        std::string_view value, std::string_view file);

}  // namespace orvex::platform
