// ComScan.h: the search for known COM components in every place they register, and the
// module-usage list's files.
#pragma once

#include <array>
#include <string>

#include "platform/Registry.h"

namespace orvex {

// One place where a component may stand: its root and the key below which CLSIDs are keys
// or value names.
struct ComKeyRow {
    std::string path;
    platform::Hive root = platform::Hive::ClassesRoot;
    std::string rootName;
};

inline constexpr int kComKeyRows = 21;
extern std::array<ComKeyRow, kComKeyRows> ComKeyTable;

// Fills ComKeyTable; called once per scan before the CLSID definitions are walked.
void ClsidIntialize();

// Reports `clsid` wherever ComKeyTable shows it, as a key or else as a value name.
void CLSIDLocate(std::string& clsid, std::string& threat);

// Reports the module-usage entries whose file has a listed digest or a listed name.
void EnumerateSpecialKeys();

// The file-name part of a module-usage key's name.
std::string ExtractFileNameSpecial(const std::string& text);

}  // namespace orvex
