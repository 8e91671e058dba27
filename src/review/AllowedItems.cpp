// AllowedItems.cpp: reading and rewriting Exclude.dat, and its rows in frmexclude.
#include "review/AllowedItems.h"

#include <optional>

#include "core/AppState.h"
#include "core/AtomicFile.h"
#include "core/ErrorHandler.h"
#include "core/Failure.h"
#include "core/Text.h"
#include "core/TextFile.h"
#include "platform/FileHelper.h"
#include "review/ExcludePage.h"
#include "scan/Recorder.h"

namespace orvex {
namespace {

constexpr const char* kModule = "Module1";
constexpr const char* kSeparator = "^";
constexpr std::int32_t kFieldCount = 4;

bool IsKnownKind(const std::string& kind) {
    return kind == kKindFileSystem || kind == kKindRegistryKey || kind == kKindRegistryValue;
}

// ThreatName^ItemLocation^ItemName^ItemKind: the kind goes last in the file.
std::string ExcludeLine(const ExclusionRecord& r) {
    return r.ThreatName + kSeparator + r.ItemLocation + kSeparator + r.ItemName + kSeparator +
           r.ItemKind;
}

const std::string& SubItem(const ui::ListItem& row, std::size_t column) {
    static const std::string kEmpty;
    return column >= 1 && column <= row.SubItems.size() ? row.SubItems[column - 1] : kEmpty;
}

ExclusionRecord RecordOfRow(const ui::ListItem& row) {
    return ExclusionRecord{row.Text, SubItem(row, 1), SubItem(row, 2), SubItem(row, 3)};
}

// Rewrites the store in one step, then reads it back, so that the table always shows
// what the file holds, also when the rewrite failed and the old file stayed.
void RewriteAndReload(const char* procedure, const std::vector<ExclusionRecord>& records) {
    std::vector<std::string> lines;
    lines.reserve(records.size());
    for (const ExclusionRecord& r : records)
        lines.push_back(ExcludeLine(r));
    Procedure proc(kModule, procedure);
    proc.Run([&] {
        proc.Step([&] { RewriteTextFile(ExcludeDatPath(), lines); });
        LoadExclusion();
    });
}

}  // namespace

const ExclusionRecord& ExclusionTable::operator[](std::int32_t index) const {
    if (index < 1 || index > Count()) Raise(failure::kSubscript);
    return records_[static_cast<std::size_t>(index - 1)];
}

ExclusionRecord& ExclusionTable::operator[](std::int32_t index) {
    if (index < 1 || index > Count()) Raise(failure::kSubscript);
    return records_[static_cast<std::size_t>(index - 1)];
}

void ExclusionTable::Add(ExclusionRecord record) {
    records_.push_back(std::move(record));
}

ExclusionTable& ExclusionRecords() {
    static ExclusionTable table;
    return table;
}

std::string ExcludeDatPath() {
    return App().AppPath + "\\Exclude.dat";
}

void LoadExclusion() {
    Procedure proc(kModule, "LoadExclusion");
    proc.Run([&] {
        ExclusionRecords().Clear();
        const std::string path = ExcludeDatPath();
        if (!platform::FileHelper().FileExists(path)) return;
        std::optional<TextFile> file;
        if (!proc.Step([&] { file.emplace(TextFile::ForInput(path)); })) return;
        while (!file->Eof()) {
            const std::string line = file->LineInput();
            if (Occurs(line, kSeparator) < kFieldCount) continue;
            const auto f = Split(line, kSeparator, -1, Compare::Binary);
            ExclusionRecords().Add(ExclusionRecord{f[0], f[3], f[1], f[2]});
        }
    });
}

void WriteExclusions() {
    const ExclusionTable& table = ExclusionRecords();
    RewriteAndReload("WriteExclusions", std::vector<ExclusionRecord>(table.begin(), table.end()));
}

void DisplayExclusions() {
    Procedure proc(kModule, "DisplayExclusions");
    proc.Run([&] {
        ui::ListView& list = frmexclude().lvExclusion;
        for (const ExclusionRecord& r : ExclusionRecords()) {
            if (!IsKnownKind(r.ItemKind)) continue;
            ui::ListItem row;
            row.Text = r.ThreatName;
            row.SubItems = {r.ItemKind, r.ItemLocation, r.ItemName};
            list.ListItems.push_back(std::move(row));
        }
    });
}

void ReWriteExclusion1() {
    std::vector<ExclusionRecord> records;
    for (const ui::ListItem& row : frmexclude().lvExclusion.ListItems)
        records.push_back(RecordOfRow(row));
    RewriteAndReload("ReWriteExclusion1", records);
}

}  // namespace orvex
