// BackupStore.h: Backup.Dat, the one record of where each backup copy came from, its
// records in memory, and the ".asw" names of the copies in the backup folder.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "core/Vb.h"
#include "ui/Controls.h"

namespace orvex {

inline constexpr const char* kBackupKindFile = "File";
inline constexpr const char* kBackupKindRegistry = "Registry";
inline constexpr const char* kBackupExtension = ".asw";

// One backup. The file keeps the kind first and the date second; in memory the date
// comes first.
struct BackupRecord {
    std::string BackupDate;
    std::string BackupKind;
    std::string OldLocation;  // "^" for a registry item
    std::string OldName;
    std::string NewLocation;  // ends in a backslash
    std::string NewName;
    std::string ThreatName;
};

// The records of Backup.Dat, numbered 1 to Count() as the classic array was.
class BackupTable {
  public:
    std::int32_t Count() const { return static_cast<std::int32_t>(records_.size()); }
    // Record `index`, 1..Count(); failure 9 outside.
    const BackupRecord& operator[](std::int32_t index) const;
    BackupRecord& operator[](std::int32_t index);
    void Add(BackupRecord record);
    void Clear() { records_.clear(); }

    std::vector<BackupRecord>::const_iterator begin() const { return records_.begin(); }
    std::vector<BackupRecord>::const_iterator end() const { return records_.end(); }

  private:
    std::vector<BackupRecord> records_;  // records_[0] is record 1
};

// The one table of the process.
BackupTable& BackupRecords();

// App().AppPath + "\Backup.Dat".
std::string BackupDatPath();

// The 8-character stem of a new copy's name: the tick count followed by the number of
// files the backup folder shows, cut to 8 characters. Not certain to be new: a copy with
// the same stem overwrites the earlier one. Failure 76 when the folder is missing.
std::string BackupStem();

// The backup folder's shown-file count as the last stem took it, kept while the folder's
// stamp stays the same, so a removal does not list the folder once per backup.
struct BackupFolderCount {
    bool known = false;
    std::string folder;
    std::uint64_t stamp = 0;
    std::size_t count = 0;
};
BackupFolderCount& BackupFolderCountOfRun();

// Runs `write`, which puts the file `path` into the backup folder, and keeps the stem's
// count in step with it.
void WriteIntoBackupFolder(const std::string& path, const std::function<void()>& write);

// Appends one line to Backup.Dat (created when missing). The old name comes before the
// old location here, the reverse of the file. With `reload` true, reads the file back.
void AddBackupDat(const std::string& kind, const std::string& oldName,
                  const std::string& oldLocation, const std::string& newName,
                  const std::string& newLocation, const std::string& threat, VbBool reload);

// Reads Backup.Dat into BackupRecords; an absent file gives an empty table.
void LoadBackupDat();

// Writes the rows of frmblocked's lvBackup (text: date; columns 1 to 6: kind, old
// location, old name, new location, new name, threat) as the new Backup.Dat, in one
// step. With `reload` true, reads the file back.
void SaveBackupDat(const ui::ListView& lvBackup, VbBool reload);

}  // namespace orvex
