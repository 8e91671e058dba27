// BackupItem.h: the copy made of an item before the removal touches it, with its line in
// Backup.Dat.
#pragma once

#include <string>

namespace orvex {

// Backs up one item. For a file, `item` is its folder and `name` its file name; for a
// registry item, `item` is the whole item text ("HKEY_...\path", a value with "|name")
// and the whole key is saved. True unless the copy failed; a copy refused because the
// file is in use (70) moves the file into the backup folder at the next start instead,
// without a line in Backup.Dat.
bool BackupItem(bool isFile, const std::string& item, const std::string& name,
                const std::string& rootName, std::string& threat);

}  // namespace orvex
