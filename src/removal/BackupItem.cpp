// BackupItem.cpp: a file is copied under an ".asw" name, a registry item's key saved as a
// registry export file; either way the line in Backup.Dat is the only record of it.
#include "removal/BackupItem.h"

#include "core/AppState.h"
#include "core/ErrorHandler.h"
#include "platform/FileHelper.h"
#include "platform/Platform.h"
#include "platform/RegistryHelper.h"
#include "removal/Deferred.h"
#include "scan/RunProc.h"
#include "stores/BackupStore.h"

namespace orvex {
namespace {

constexpr std::uint32_t kDelayUntilReboot = 4;

void BackUpFile(const std::string& folder, const std::string& name, const std::string& copyName,
                const std::string& threat) {
    const std::string& backups = App().BackupFolder;
    const std::string copyPath = backups + "\\" + copyName;
    WriteIntoBackupFolder(copyPath, [&] { platform::Files().copy(folder + name, copyPath, true); });
    AddBackupDat(kBackupKindFile, name, folder, copyName, backups + "\\", threat, VbFalse);
}

// The key that holds the item is saved whole, under the backup folder's short name: the
// save cannot take a long path.
void BackUpRegistryItem(const std::string& item, const std::string& copyName,
                        const std::string& threat) {
    platform::RegistryHelper reg;
    const std::size_t slash = item.find('\\');
    if (slash != std::string::npos)
        if (auto hive = platform::RegistryHelper::HiveOfName(item.substr(0, slash)))
            reg.RootKey(*hive);
    const std::string key = item.substr(0, item.find('|'));
    const std::string keyPath = key.substr(key.find('\\') + 1);
    const std::string shortFolder = platform::FileHelper().ShortName(App().BackupFolder);
    const std::string copyPath = shortFolder + "\\" + copyName;
    bool saved = false;
    WriteIntoBackupFolder(copyPath, [&] { saved = reg.SaveKey(reg.RootKey(), keyPath, copyPath); });
    if (saved)
        AddBackupDat(kBackupKindRegistry, item, "", copyName, shortFolder + "\\", threat, VbFalse);
}

// A file in use moves into the backup folder at the next start, on the systems that can.
void MoveAtNextStart(const std::string& path, const std::string& destination) {
    const std::uint8_t kind = clsRunProc().OS();
    if (kind == oskind::kNt4 || kind == oskind::kNt5) {
        platform::FileHelper().ClearAttributes(path);
        platform::Sys().moveFileAtRestart(path, destination, kDelayUntilReboot);
    } else if (kind == oskind::kWin95 || kind == oskind::kWin9x) {
        Create9xReboot(path, destination);
    } else {
        return;
    }
    App().RestartNeeded = VbTrue;
}

}  // namespace

bool BackupItem(bool isFile, const std::string& item, const std::string& name,
                const std::string& rootName, std::string& threat) {
    (void)rootName;  // the item text carries its root
    Procedure proc("Module1", "BackupItem");
    std::string stem;
    proc.Step([&] { stem = BackupStem(); });
    const std::string copyName = stem + kBackupExtension;
    try {
        if (isFile)
            BackUpFile(item, name, copyName, threat);
        else
            BackUpRegistryItem(item, copyName, threat);
        return true;
    } catch (const Failure& f) {
        if (f.number() != failure::kPermissionDenied) return false;
        try {
            MoveAtNextStart(item + name, App().BackupFolder + "\\" + stem + name);
        } catch (const Failure&) {
            // the hand-over is a best effort; the removal goes on to the wipe
        }
        return false;
    }
}

}  // namespace orvex
