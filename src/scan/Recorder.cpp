// Recorder.cpp: ScumList and List1, the recording of a finding, the [Exclusion] test of a
// file name and Occurs.
#include "scan/Recorder.h"

#include <optional>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "core/AppState.h"
#include "core/Convert.h"
#include "core/ErrorHandler.h"
#include "core/Text.h"
#include "definitions/DefinitionTables.h"
#include "platform/AnsiCase.h"
#include "platform/Failure.h"
#include "platform/FileHelper.h"
#include "scan/DefinitionLookup.h"
#include "scan/ScanProgress.h"
#include "ui/UiHost.h"

namespace orvex {
namespace {

constexpr const char* kModule = "Module1";

// ---------------------------------------------------------------------------------------
// Row identity: level, location and category as they stand, item and name case-folded.
// Each part carries its length, so no two different rows can give the same key.

void AppendPart(std::string& key, std::string_view part, bool fold) {
    key += std::to_string(part.size());
    key += ':';
    for (char c : part)
        key += fold ? static_cast<char>(AnsiLower(static_cast<unsigned char>(c))) : c;
}

std::string IdentityKey(std::string_view name, std::string_view category, std::string_view location,
                        std::string_view item, std::string_view level) {
    std::string key;
    key.reserve(name.size() + category.size() + location.size() + item.size() + level.size() + 20);
    AppendPart(key, level, false);
    AppendPart(key, location, false);
    AppendPart(key, item, true);
    AppendPart(key, category, false);
    AppendPart(key, name, true);
    return key;
}

std::string IdentityKey(const ScumRow& row) {
    return IdentityKey(row.name, row.category, row.location, row.item, row.level);
}

// ---------------------------------------------------------------------------------------
// List1 is, after every add, each distinct non-empty name of the rows in the spelling of
// its first row. Between adds it stays as it was (removals and the review pages leave it
// be). While only adds happened since the last build, the new name is appended when its
// folded form is new; after anything else the list is built again from the rows.

struct List1Build {
    std::uint64_t removals = ~std::uint64_t{0};
    std::int32_t rows = -1;
    std::uint64_t edits = ~std::uint64_t{0};
    std::unordered_set<std::string> folded;
};

List1Build& LastBuild() {
    static List1Build build;
    return build;
}

// The name joins when no entry has it. The classic look-up ran one step past the last
// entry and read an empty text there, so an empty name always counts as present.
void Enter(const std::string& name, ThreatNameList& names, List1Build& build) {
    if (name.empty()) return;
    if (build.folded.insert(LCase(name)).second) names.AddItem(name);
}

void Rebuild(const ScumList& rows, ThreatNameList& names, List1Build& build) {
    names.Clear();
    build.folded.clear();
    for (const ScumRow& row : rows)
        Enter(row.name, names, build);
}

// Call before the new row is added: true when List1 is still what the last build left
// and the rows have not changed since but by adds.
bool List1InStep(const ScumList& rows, const ThreatNameList& names) {
    const List1Build& build = LastBuild();
    return build.removals == rows.removals() && build.rows == rows.count() &&
           build.edits == names.edits();
}

void UpdateList1(const std::string& newName, bool inStep) {
    const ScumList& rows = ScumListOfRun();
    ThreatNameList& names = List1OfRun();
    List1Build& build = LastBuild();
    if (inStep)
        Enter(newName, names, build);
    else
        Rebuild(rows, names, build);
    build.removals = rows.removals();
    build.rows = rows.count();
    build.edits = names.edits();
}

// ---------------------------------------------------------------------------------------
// Severity and icon.

// The risk of the first [ItemList] line whose first field is `name` (case-blind); 1 when
// no line has it or its risk is empty. A risk that is no number is failure 13.
int Severity(const std::string& name) {
    const std::string folded = LCase(name);
    // A name holding "|" can equal no first field.
    if (folded.find('|') != std::string::npos) return 1;
    const ScopedDefinitionLookup scoped;
    const std::optional<std::size_t> at = scoped.Lookup().ItemListLine(folded);
    if (!at) return 1;
    const std::string& line = Definitions().ItemListDefs.Items[*at];
    if (line.size() == folded.size()) return 1;
    const std::string_view rest = std::string_view(line).substr(folded.size() + 1);
    const std::string_view risk = rest.substr(0, rest.find('|'));
    return risk.empty() ? 1 : CInt(risk);
}

int IconFor(int severity) {
    if (severity < 3) return 1;
    if (severity == 3) return 2;
    return 3;
}

void ShowCount() {
    if (IsTrue(App().StopRequested)) return;
    TheScanProgress().ThreatsFound(App().ScumCount);
}

// ---------------------------------------------------------------------------------------
// ExclusionRoutine's parts.

// Long forms of the names the callers pass. A short file name is resolved inside its
// folder and kept in lower case like every file name here; a name that cannot be resolved
// stays as it was.
void ResolveShortNames(std::string& fileName, std::string& folder) {
    platform::FileHelper helper;
    if (fileName.find('~') != std::string::npos) {
        const std::string longPath = helper.LongName(folder + fileName);
        if (!longPath.empty()) fileName = LCase(platform::FileHelper::FilePart(longPath));
    }
    if (folder.find('~') != std::string::npos) {
        const std::string longFolder = helper.LongName(folder);
        if (longFolder.size() >= folder.size()) folder = longFolder;
    }
}

std::int64_t SizeOf(const std::string& path) {
    platform::FileHelper helper;
    if (!helper.FileExists(path)) return 0;
    const std::int64_t length = helper.Length(path);
    return length < 0 ? 0 : length;
}

std::int64_t Len(const std::string& text) {
    return static_cast<std::int64_t>(text.size());
}

// The size expression: "n", "<n", ">n" or pieces of those joined by "*". The walk over
// the pieces is kept as it always was, with its three known oddities: "<" is strict in a
// piece but inclusive at the end; a hit on a prefixed piece is checked again, prefix lost,
// as an equality; and after a miss on a prefixed piece the rest is cut one character too
// long, so the next piece is empty and fails to convert.
bool SizeTestHolds(const std::string& expression, std::int64_t size) {
    std::string current = expression;
    std::string rest = expression;
    while (InStr(current, "*") > 0) {
        current = Left(current, InStr(current, "*") - 1);
        bool hit;
        if (StartsWith(current, "<")) {
            current = Mid(current, 2);
            hit = size < CLng(current);
        } else if (StartsWith(current, ">")) {
            current = Mid(current, 2);
            hit = size >= CLng(current);
        } else {
            hit = CLng(current) == size;
        }
        if (hit) break;
        current = Right(rest, Len(rest) - Len(current) - 1);
        rest = current;
    }
    if (StartsWith(current, "<")) return size <= CLng(Mid(current, 2));
    if (StartsWith(current, ">")) return size >= CLng(Mid(current, 2));
    return size == CLng(current);
}

// The fields of an [Exclusion] line.
enum ExclusionField { kFileName = 0, kThreat, kSizeTest, kFolderPart, kCodeOnName, kCodeOnMatch };

}  // namespace

// ---------------------------------------------------------------------------------------
// ScumList

std::size_t ScumList::slot(std::int32_t index) const {
    if (index < 1 || index > count()) Raise(failure::kSubscript);
    return static_cast<std::size_t>(index - 1);
}

const ScumRow& ScumList::row(std::int32_t index) const {
    return rows_[slot(index)];
}

void ScumList::setChecked(std::int32_t index, bool checked) {
    rows_[slot(index)].checked = checked;
}

void ScumList::add(ScumRow row) {
    ++keys_[IdentityKey(row)];
    rows_.push_back(std::move(row));
}

void ScumList::forget(const ScumRow& row) {
    const auto it = keys_.find(IdentityKey(row));
    if (it != keys_.end() && --it->second <= 0) keys_.erase(it);
}

void ScumList::removeRow(std::int32_t index) {
    const std::size_t at = slot(index);
    forget(rows_[at]);
    rows_.erase(rows_.begin() + static_cast<std::ptrdiff_t>(at));
    ++removals_;
}

void ScumList::clear() {
    rows_.clear();
    keys_.clear();
    ++removals_;
}

bool ScumList::holds(const std::string& name, const std::string& category,
                     const std::string& location, const std::string& item,
                     const std::string& level) const {
    return keys_.count(IdentityKey(name, category, location, item, level)) != 0;
}

// ---------------------------------------------------------------------------------------
// ThreatNameList

const std::string& ThreatNameList::List(std::int32_t index) const {
    if (index < 0 || index >= ListCount()) Raise(failure::kSubscript);
    return names_[static_cast<std::size_t>(index)];
}

void ThreatNameList::AddItem(std::string name) {
    names_.push_back(std::move(name));
    ++edits_;
}

void ThreatNameList::RemoveItem(std::int32_t index) {
    if (index < 0 || index >= ListCount()) Raise(failure::kSubscript);
    names_.erase(names_.begin() + index);
    ++edits_;
}

void ThreatNameList::Clear() {
    names_.clear();
    ++edits_;
}

// ---------------------------------------------------------------------------------------
// The routines

ScumList& ScumListOfRun() {
    static ScumList list;
    return list;
}

ThreatNameList& List1OfRun() {
    static ThreatNameList names;
    return names;
}

void ScumListDetailsAdd(std::string name, std::string category, std::string location,
                        std::string item, std::string level) {
    Procedure proc(kModule, "ScumListDetailsAdd");
    proc.Run([&] {
        if (level.empty()) level = kLevelConfirmed;
        ScumList& rows = ScumListOfRun();
        if (rows.holds(name, category, location, item, level)) return;
        const int icon = IconFor(Severity(name));
        const bool inStep = List1InStep(rows, List1OfRun());
        const std::string threat = name;
        rows.add(ScumRow{std::move(name), category, std::move(level), std::move(location),
                         std::move(item), category == kCategoryCookie ? kNoIcon : icon, false});
        UpdateList1(threat, inStep);
        App().ScumCount = List1OfRun().ListCount();
        ShowCount();
    });
}

std::int32_t ExclusionRoutine(std::string fileName, std::string folder, const std::string& threat) {
    std::int32_t result = 4;
    Procedure proc(kModule, "ExclusionRoutine");
    proc.Run([&] {
        ResolveShortNames(fileName, folder);
        const std::int64_t size = SizeOf(folder + fileName);
        const TextTable& defs = Definitions().ExclusionDefs;
        bool matched = false;
        std::vector<std::string> fields;
        // By index, and nothing kept across the yield: it may let a reload replace the table.
        for (std::size_t i = 0; i < defs.Items.size(); ++i) {
            ui::DoEvents();
            if (i >= defs.Items.size()) break;
            const std::string& line = defs.Items[i];
            fields.clear();
            if (line.empty()) continue;
            // A line before the name's first character is passed whatever its fields, so
            // the costly field count is left to the others.
            if (!fileName.empty() && Asc(fileName) > Asc(line)) continue;
            if (Occurs(line, "|") < 6) continue;
            const int wanted = Asc(fileName);
            const int first = Asc(line);
            if (wanted < first) return;  // sorted: the name cannot come any more
            fields = Split(line, "|");
            if (LCase(fields[kFileName]) != fileName) continue;
            if (!fields[kCodeOnName].empty() && !matched) result = CLng(fields[kCodeOnName]);
            if (!fields[kThreat].empty()) {
                matched = LCase(threat) == LCase(fields[kThreat]);
                if (!matched) break;  // another threat's line ends the walk
            }
            if (!fields[kSizeTest].empty()) matched = SizeTestHolds(fields[kSizeTest], size);
            if (!fields[kFolderPart].empty()) {
                matched = InStr(LCase(folder), LCase(fields[kFolderPart])) > 0;
                if (!matched) break;
            }
            if (matched) break;
        }
        if (matched) result = CLng(fields[kCodeOnMatch]);
    });
    return result;
}

}  // namespace orvex
