// BackupStore.cpp: reading, appending to and rewriting Backup.Dat; the ".asw" stems.
#include "stores/BackupStore.h"

#include <optional>

#include "core/AppState.h"
#include "core/AtomicFile.h"
#include "core/DateText.h"
#include "core/ErrorHandler.h"
#include "core/Text.h"
#include "core/TextFile.h"
#include "platform/Failure.h"
#include "platform/FileHelper.h"
#include "platform/Platform.h"

namespace orvex {
namespace {

constexpr const char* kModule = "Module1";
constexpr const char* kSeparator = "*";
constexpr const char* kEmptyField = "^";
constexpr std::int32_t kLeastFields = 5;
constexpr std::size_t kStemLength = 8;

std::string OrCaret(const std::string& field) {
    return field.empty() ? kEmptyField : field;
}

const std::string& SubItem(const ui::ListItem& row, std::size_t column) {
    static const std::string kEmpty;
    return column >= 1 && column <= row.SubItems.size() ? row.SubItems[column - 1] : kEmpty;
}

std::string JoinFields(const std::vector<std::string>& fields) {
    return Join(fields, kSeparator);
}

// What a file list with its default settings shows: files, not folders, and neither
// hidden nor system files.
bool ShownInFileList(const platform::DirEntry& entry) {
    constexpr std::uint32_t kNotShown =
        platform::attr::kDirectory | platform::attr::kHidden | platform::attr::kSystem;
    return (entry.attributes & kNotShown) == 0;
}

std::size_t BackupFolderFileCount() {
    std::size_t count = 0;
    for (const platform::DirEntry& entry : platform::Files().list(App().BackupFolder)) {
        if (ShownInFileList(entry)) ++count;
    }
    return count;
}

// The count as the file list would show it now: listed again only when the folder has
// changed since it was last taken. A change by another program within the stamp's
// granularity of our own last write goes unseen; it can only alter a stem, which is not
// certain to be new anyway.
std::size_t ShownBackupFiles() {
    BackupFolderCount& kept = BackupFolderCountOfRun();
    const std::string& folder = App().BackupFolder;
    const std::uint64_t stamp = platform::Files().folderStamp(folder);
    if (!kept.known || kept.folder != folder || kept.stamp != stamp)
        kept = {true, folder, stamp, BackupFolderFileCount()};
    return kept.count;
}

// The file's field order: kind first, then the date, then the rest as in memory.
BackupRecord RecordOfLine(Procedure& proc, const std::vector<std::string>& f) {
    BackupRecord r;
    // A line of 5 or 6 fields still makes a record; each missing field is a failure of
    // its own (9, as the array read past its end was), and the record keeps the fields
    // that were there.
    const auto take = [&](std::string& into, std::size_t index) {
        if (index < f.size())
            into = f[index];
        else
            proc.Fail(failure::kSubscript);
    };
    take(r.BackupDate, 1);
    take(r.BackupKind, 0);
    take(r.OldLocation, 2);
    take(r.OldName, 3);
    take(r.NewLocation, 4);
    take(r.NewName, 5);
    take(r.ThreatName, 6);
    return r;
}

std::string LineOfRow(const ui::ListItem& row) {
    return JoinFields({SubItem(row, 1), row.Text, SubItem(row, 2), SubItem(row, 3), SubItem(row, 4),
                       SubItem(row, 5), SubItem(row, 6)});
}

}  // namespace

const BackupRecord& BackupTable::operator[](std::int32_t index) const {
    if (index < 1 || index > Count()) Raise(failure::kSubscript);
    return records_[static_cast<std::size_t>(index - 1)];
}

BackupRecord& BackupTable::operator[](std::int32_t index) {
    if (index < 1 || index > Count()) Raise(failure::kSubscript);
    return records_[static_cast<std::size_t>(index - 1)];
}

void BackupTable::Add(BackupRecord record) {
    records_.push_back(std::move(record));
}

BackupTable& BackupRecords() {
    static BackupTable table;
    return table;
}

std::string BackupDatPath() {
    return App().AppPath + "\\Backup.Dat";
}

BackupFolderCount& BackupFolderCountOfRun() {
    static BackupFolderCount kept;
    return kept;
}

std::string BackupStem() {
    const std::string ticks = std::to_string(platform::Sys().tickCount());
    // Eight digits of ticks leave no room for the count, so the folder's files need not be
    // counted; it must still be there.
    if (ticks.size() >= kStemLength) {
        BackupFolderCountOfRun().known = false;
        if (!platform::Files().folderExists(App().BackupFolder)) Raise(failure::kPathNotFound);
        return Left(ticks, kStemLength);
    }
    return Left(ticks + std::to_string(ShownBackupFiles()), kStemLength);
}

void WriteIntoBackupFolder(const std::string& path, const std::function<void()>& write) {
    BackupFolderCount& kept = BackupFolderCountOfRun();
    if (!kept.known) return write();
    kept.known = false;  // until the write is known to have gone as counted
    platform::FileSystem& files = platform::Files();
    const bool wasThere = files.fileExists(path);
    write();
    if (!wasThere && files.fileExists(path) && ShownInFileList({"", "", files.attributes(path)}))
        ++kept.count;
    kept.stamp = files.folderStamp(kept.folder);
    kept.known = true;
}

void AddBackupDat(const std::string& kind, const std::string& oldName,
                  const std::string& oldLocation, const std::string& newName,
                  const std::string& newLocation, const std::string& threat, VbBool reload) {
    Procedure proc(kModule, "AddBackupDat");
    proc.Run([&] {
        const std::string line =
            JoinFields({OrCaret(kind), GeneralDate(Now()), OrCaret(oldLocation), OrCaret(oldName),
                        OrCaret(newLocation), OrCaret(newName), threat});
        // Opened and closed for this one line, so no handle outlives the events that a
        // removal lets run between items.
        proc.Step([&] {
            TextFile file = TextFile::ForAppend(BackupDatPath());
            file.Print(line);
            file.Close();
        });
        if (IsTrue(reload)) LoadBackupDat();
    });
}

void LoadBackupDat() {
    Procedure proc(kModule, "LoadBackupDat");
    proc.Run([&] {
        BackupRecords().Clear();
        const std::string path = BackupDatPath();
        if (!platform::FileHelper().FileExists(path)) return;
        std::optional<TextFile> file;
        if (!proc.Step([&] { file.emplace(TextFile::ForInput(path)); })) return;
        while (!file->Eof()) {
            const std::string line = file->LineInput();
            if (Occurs(line, kSeparator) < kLeastFields) continue;
            BackupRecords().Add(RecordOfLine(proc, Split(line, kSeparator, -1, Compare::Binary)));
        }
    });
}

void SaveBackupDat(const ui::ListView& lvBackup, VbBool reload) {
    std::vector<std::string> lines;
    lines.reserve(lvBackup.ListItems.size());
    for (const ui::ListItem& row : lvBackup.ListItems)
        lines.push_back(LineOfRow(row));
    Procedure proc(kModule, "SaveBackupDat");
    proc.Run([&] {
        proc.Step([&] { RewriteTextFile(BackupDatPath(), lines); });
        if (IsTrue(reload)) LoadBackupDat();
    });
}

}  // namespace orvex
