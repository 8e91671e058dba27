// BackupRunner.h: the restore window's actions without a window, for the command line:
// the list of Backup.Dat, and the restore, delete and delete-all buttons.
#pragma once

#include <string>
#include <vector>

#include "stores/BackupStore.h"

namespace orvex {

enum class BackupAction { kRestore, kDelete };

struct BackupActionResult {
    int exitCode = 0;   // 0 done, 2 error
    std::string error;  // what was wrong, naming the threat as given
    bool restartNeeded = false;
};

// The records of Backup.Dat in the program folder `appPath` (no closing backslash).
std::vector<BackupRecord> ListBackups(const std::string& appPath);

// Restores or deletes the backups of `threats` (compared in lower case) as the restore and
// delete buttons do; every threat when `threats` is empty, deleting through the delete-all
// button. A threat without backups is an error, and then nothing is done.
BackupActionResult RunBackupAction(const std::string& appPath, BackupAction action,
                                   const std::vector<std::string>& threats);

}  // namespace orvex
