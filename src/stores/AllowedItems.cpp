// AllowedItems.cpp: reading and rewriting Exclude.dat.
#include "stores/AllowedItems.h"

#include <optional>

#include "core/AppState.h"
#include "core/AtomicFile.h"
#include "core/ErrorHandler.h"
#include "core/Text.h"
#include "core/TextFile.h"
#include "definitions/DefinitionTables.h"
#include "platform/Failure.h"
#include "platform/FileHelper.h"

namespace orvex {
namespace {

constexpr const char* kModule = "Module1";
constexpr const char* kSeparator = "^";
constexpr std::int32_t kFieldCount = 4;

// ThreatName^ItemLocation^ItemName^ItemKind: the kind goes last in the file.
std::string ExcludeLine(const ExclusionRecord& r) {
    return r.ThreatName + kSeparator + r.ItemLocation + kSeparator + r.ItemName + kSeparator +
           r.ItemKind;
}

// Rewrites the store in one step, then reads it back, so that the table always shows
// what the file holds, also when the rewrite failed and the old file stayed.
}  // namespace

bool IsKnownKind(const std::string& kind) {
    return kind == kKindFileSystem || kind == kKindRegistryKey || kind == kKindRegistryValue;
}

void RewriteExclusions(const char* procedure, const std::vector<ExclusionRecord>& records) {
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
    RewriteExclusions("WriteExclusions", std::vector<ExclusionRecord>(table.begin(), table.end()));
}

// The gate looks at the definitions' [Exclusion] table, yet searches the user's list.
bool OnAllowedList(const std::string& location, const std::string& item, const std::string& name,
                   const std::string& category) {
    if (item.empty() || Definitions().ExclusionDefs.Count < 1) return false;
    const std::string lowerName = LCase(name);
    const std::string lowerItem = LCase(item);
    bool matched = false;
    for (const ExclusionRecord& r : ExclusionRecords()) {
        if (LCase(r.ThreatName) == lowerName && r.ItemKind == category &&
            r.ItemLocation == location && LCase(r.ItemName) == lowerItem)
            matched = true;
    }
    return matched;
}

}  // namespace orvex
