// RegFile.h: registry keys as REGEDIT4 text, the plain export format of regedit. Backups of
// registry items are kept in it, so that regedit can also put a key back by hand.
//
// A file is the line "REGEDIT4", a blank line, then for each key a "[HKEY_...\path]" line,
// its values one a line and a blank line. `@` names the default value; REG_SZ is a quoted
// text, REG_DWORD "dword:0000002a", REG_BINARY "hex:01,02", every other type "hex(N):" with N
// in hex. REG_SZ and REG_EXPAND_SZ written as hex carry their terminating NUL in the file,
// not in RegValue; every other type carries its bytes unchanged.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Registry.h"

namespace orvex::platform {

struct RegFileKey {
    Hive hive = Hive::LocalMachine;
    std::string path;  // below the hive, "" for the hive itself
    std::vector<RegValue> values;
};

// The text of the keys in their order, CR LF line ends; std::nullopt when a key has no
// hive name or a name holds what a line cannot carry (CR, LF, NUL, an empty path part).
std::optional<std::string> WriteRegFile(const std::vector<RegFileKey>& keys);

// The keys of a REGEDIT4 text, in file order. LF or CR LF line ends, ";" comment lines and
// hex data continued with "\" are accepted; deletions ("[-...]", "=-") are not. On a bad
// text: std::nullopt, with `error` telling the line and what is wrong with it.
std::optional<std::vector<RegFileKey>> ReadRegFile(std::string_view text, std::string& error);

}  // namespace orvex::platform
