// DefinitionLoader.cpp: the definition file reader, the section parser that files each line
// into its table, and the pass that sorts and indexes what the scans search.
#include "definitions/DefinitionLoader.h"

#include <array>
#include <cstring>
#include <string_view>
#include <utility>

#include "core/AppState.h"
#include "core/Config.h"
#include "core/ErrorHandler.h"
#include "core/Text.h"
#include "core/TextFile.h"
#include "core/Version.h"
#include "definitions/Cipher.h"
#include "definitions/DefinitionTables.h"
#include "definitions/LoadReport.h"
#include "platform/FileHelper.h"
#include "platform/RegistryHelper.h"
#include "ui/UiHost.h"

namespace orvex {
namespace {

constexpr const char* kModule = "Module1";
constexpr const char* kStaticFile = "ovsstatic.dat";
constexpr const char* kDefinitionFile = "ovsdef.dat";
constexpr std::size_t kPrefixSize = 4;

enum Section : std::size_t {
    kMd5,
    kAddRemove,
    kStartup,
    kFiles,
    kClsid,
    kItemList,
    kDescriptions,
    kExclusion,
    kRegistry,
    kDoNotUnRegister,
    kSectionCount
};

struct Header {
    std::string_view text;
    Section section;
};

constexpr std::array<Header, kSectionCount> kHeaders{{
    {"[MD5]", kMd5},
    {"[Add\\Remove]", kAddRemove},
    {"[Startup]", kStartup},
    {"[Files]", kFiles},
    {"[CLSID]", kClsid},
    {"[ItemList]", kItemList},
    {"[Descriptions]", kDescriptions},
    {"[Exclusion]", kExclusion},
    {"[Registry]", kRegistry},
    {"[DoNotUnRegister]", kDoNotUnRegister},
}};

bool HasSeparator(std::string_view line) {
    return line.find('|') != std::string_view::npos;
}

// Piece i of a line split at "|", as an array subscript of the split: failure 9 when the
// line has no such piece (an empty line has none at all).
std::string_view Piece(std::string_view line, std::size_t i) {
    if (line.empty()) Raise(failure::kSubscript);
    std::size_t start = 0;
    for (; i > 0; --i) {
        const std::size_t bar = line.find('|', start);
        if (bar == std::string_view::npos) Raise(failure::kSubscript);
        start = bar + 1;
    }
    return line.substr(start, line.find('|', start) - start);
}

// Element i of split pieces, as an array subscript: failure 9 when it is not there.
const std::string& Column(const std::vector<std::string>& pieces, std::size_t i) {
    if (i >= pieces.size()) Raise(failure::kSubscript);
    return pieces[i];
}

std::string_view RTrimView(std::string_view text) {
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    return text;
}

// The next complete record as a view into the file's bytes; false at the end of the file or
// at a record that does not fit in what is left of it (the position then moves to the end).
bool NextRecord(DefinitionFile& file, std::string_view& record) {
    const std::size_t size = file.bytes.size();
    if (file.position >= size) return false;
    const std::size_t left = size - file.position;
    if (left < kPrefixSize) {
        file.position = size;
        return false;
    }
    const auto* p = reinterpret_cast<const unsigned char*>(file.bytes.data() + file.position);
    const std::uint32_t n =
        static_cast<std::uint32_t>(p[0]) | static_cast<std::uint32_t>(p[1]) << 8 |
        static_cast<std::uint32_t>(p[2]) << 16 | static_cast<std::uint32_t>(p[3]) << 24;
    if (n > left - kPrefixSize) {
        file.position = size;
        return false;
    }
    record = std::string_view(file.bytes).substr(file.position + kPrefixSize, n);
    file.position += kPrefixSize + n;
    return true;
}

// The deciphered, right-trimmed lines of one file. They live in the file's own buffer:
// each plain line is written over the start of its record, which is always longer, so the
// list costs no more than the file itself.
class LineList {
  public:
    // Reads the whole file; a failure that the handler passes over leaves it empty.
    LineList(Procedure& proc, const std::string& path, bool yieldBeforeDecipher) {
        proc.Step([&] { file_.bytes = ReadAllBytes(path); });
        Decipher(yieldBeforeDecipher);
    }

    std::size_t size() const { return spans_.size(); }
    std::string_view operator[](std::size_t i) const {
        return std::string_view(file_.bytes).substr(spans_[i].first, spans_[i].second);
    }

  private:
    void Decipher(bool yieldBeforeDecipher) {
        std::string text, plain;
        std::string_view record;
        while (true) {
            const std::size_t start = file_.position;
            if (!NextRecord(file_, record)) break;
            if (yieldBeforeDecipher) ui::DoEvents();
            if (!record.empty()) {
                text.assign(record);
                Decrypt(text, kDefinitionKey, plain);
                const std::string_view line = RTrimView(plain);
                std::memcpy(file_.bytes.data() + start, line.data(), line.size());
                spans_.emplace_back(start, line.size());
            }
            if (!yieldBeforeDecipher) ui::DoEvents();
        }
    }

    DefinitionFile file_;
    std::vector<std::pair<std::size_t, std::size_t>> spans_;
};

enum class FileKind { Static, Definitions };

// Files each line of one definition file into its table by the section rules.
class SectionParser {
  public:
    SectionParser(Procedure& proc, FileKind kind) : proc_(proc), kind_(kind) {}

    void Parse(const LineList& lines) {
        for (std::size_t i = 0; i < lines.size(); ++i) {
            ui::DoEvents();
            const std::string_view line = lines[i];
            if (line.empty()) continue;
            // Deliberately ahead of the sections: a data line starting with "Ver" also sets
            // the version.
            if (line.substr(0, 3) == "Ver") TakeVersion(line);
            SetFlags(line);
            ui::DoEvents();
            if (line.front() != '[') File(std::string(line));
        }
    }

  private:
    void TakeVersion(std::string_view line) {
        // The static version is the first one met, and it stays for the whole run.
        std::string& version =
            kind_ == FileKind::Static ? App().StaticDefinitionVer : App().DefinitionDate;
        if (kind_ == FileKind::Static && !version.empty()) return;
        proc_.Step([&] { version = Column(Split(line, "=", -1, Compare::Text), 1); });
    }

    void SetFlags(std::string_view line) {
        if (line == "[End]") {
            on_.fill(false);
            return;
        }
        for (const Header& h : kHeaders) {
            if (h.section == kDoNotUnRegister && kind_ == FileKind::Static) continue;
            if (line == h.text) on_[h.section] = true;
        }
    }

    void File(std::string line) {
        DefinitionTables& t = Definitions();
        if (on_[kDoNotUnRegister] && HasSeparator(line)) AppendLine(t.DoNotUnRegisterDefs, line);
        if (on_[kMd5]) {
            if (HasSeparator(line)) AppendLine(t.Md5Defs, std::move(line));
        } else if (on_[kAddRemove]) {
            AppendLine(t.AddRemoveDefs, std::move(line));
        } else if (on_[kStartup]) {
            AppendLine(t.StartupDefs, std::move(line));
        } else if (on_[kFiles]) {
            FileFilesLine(std::move(line));
        } else if (on_[kClsid]) {
            AppendLine(t.ClsidDefs, std::move(line));
        } else if (on_[kItemList]) {
            AppendLine(t.ItemListDefs, std::move(line));
        } else if (on_[kDescriptions]) {
            AppendLine(t.DescriptionDefs, std::move(line));
        } else if (on_[kExclusion]) {
            AppendLine(t.ExclusionDefs, ReplacePlaceholders(line));
        } else if (on_[kRegistry]) {
            AppendLine(t.RegistryDefs, std::move(line));
        }
    }

    // "name|file name": an index entry behind the lines so far; the sort pass rebuilds the
    // index from the sorted lines.
    static void FileFilesLine(std::string line) {
        DefinitionTables& t = Definitions();
        if (HasSeparator(line)) {
            const auto index = static_cast<std::size_t>(t.FileDefs.Count) + 1;
            t.FileIndex.Items.resize(index + 1);
            t.FileIndex[index] = FileRecord{std::string(Piece(line, 0)), LCase(Piece(line, 1))};
            ++t.FileIndex.Count;
        }
        AppendLine(t.FileDefs, std::move(line));
    }

    static std::string ReplacePlaceholders(const std::string& line) {
        std::string text = Replace(line, "systemdir", App().SystemFolder, 1, -1, Compare::Text);
        return Replace(text, "windowsdir", App().WindowsFolder, 1, -1, Compare::Text);
    }

    Procedure& proc_;
    FileKind kind_;
    std::array<bool, kSectionCount> on_{};
};

void ResetTables() {
    DefinitionTables& t = Definitions();
    for (TextTable* table : t.TextTables())
        ResetTextTable(*table);
    t.Md5Index.Items.clear();
    t.Md5Index.Count = 0;
    // FileIndex keeps its elements: the next sort pass rewrites them.
    t.FileIndex.Count = 0;
}

// [Files] lines become "lower-case file name|threat"; a line without "|" stays as it is.
void SwapFileColumns(Procedure& proc, TextTable& fileDefs) {
    for (std::string& line : fileDefs.Items) {
        if (!line.empty()) {
            proc.Step([&] {
                std::string swapped = LCase(Piece(line, 1));
                swapped += '|';
                swapped += Piece(line, 0);
                line = std::move(swapped);
            });
        }
        ui::DoEvents();
    }
}

// Entry i of FileIndex from line i of the sorted FileDefs.
void RebuildFileIndex(const TextTable& fileDefs, DefArray<FileRecord>& index) {
    if (index.Items.size() < fileDefs.Items.size()) index.Items.resize(fileDefs.Items.size());
    index.Count = 0;
    for (std::size_t i = 0; i < fileDefs.Items.size(); ++i) {
        const std::string& line = fileDefs.Items[i];
        if (HasSeparator(line)) {
            index[i] = FileRecord{std::string(Piece(line, 1)), LCase(Piece(line, 0))};
            ++index.Count;
        }
        ui::DoEvents();
    }
}

// Element i of Md5Index from line i of the sorted Md5Defs; the count counts the lines.
void RebuildMd5Index(Procedure& proc, const TextTable& md5Defs, DefArray<Md5Record>& index) {
    index.Items.assign(md5Defs.Items.size(), Md5Record{});
    index.Count = 0;
    for (std::size_t i = 0; i < md5Defs.Items.size(); ++i) {
        const std::string& line = md5Defs.Items[i];
        if (!line.empty()) {
            Md5Record& record = index[i];
            proc.Step([&] { record.Name = Piece(line, 1); });
            proc.Step([&] { record.Hash = Piece(line, 0); });
            proc.Step([&] { record.FirstChar = static_cast<std::int16_t>(Asc(record.Hash)); });
            ++index.Count;
        }
        ui::DoEvents();
    }
}

// Sorts what the scans search and builds their indexes.
void SortAndIndex(Procedure& proc) {
    DefinitionTables& t = Definitions();
    SwapFileColumns(proc, t.FileDefs);
    QuickSortMe(t.FileDefs.Items, -1, -1);
    RebuildFileIndex(t.FileDefs, t.FileIndex);
    QuickSortMe(t.ExclusionDefs.Items, -1, -1);
    QuickSortMe(t.Md5Defs.Items, -1, -1);
    t.FileIndex.Items.resize(t.FileDefs.Items.size());
    RebuildMd5Index(proc, t.Md5Defs, t.Md5Index);
}

void WriteVersionValues() {
    const AppState& app = App();
    platform::RegistryHelper reg;
    reg.RootKey(platform::Hive::LocalMachine);
    reg.KeyPath(config::kProductKey);
    reg.SetValue("DAT", app.DefinitionDate);
    reg.SetValue("StaticDAT", app.StaticDefinitionVer);
    reg.SetValue("InstalledVer",
                 VersionText() + "|" + app.DefinitionDate + "|" + app.StaticDefinitionVer);
}

void LoadDefinitionFile(Procedure& proc, const std::string& path) {
    {
        const LineList lines(proc, path, false);
        SectionParser(proc, FileKind::Definitions).Parse(lines);
    }
    TheLoadReport().DefinitionFileRead();
}

void ReportMissingDefinitions() {
    TheLoadReport().DefinitionFileMissing();
    ui::Host().MsgBox(Lng(175), ui::msgbox::kOkOnly, config::kProductTitle);
}

// The pivot index (low + high) / 2, rounded half to even as a classic array subscript is.
std::int64_t MiddleIndex(std::int64_t low, std::int64_t high) {
    const std::int64_t sum = low + high;  // both bounds are at least 0
    const std::int64_t down = sum / 2;
    return sum % 2 == 0 || down % 2 == 0 ? down : down + 1;
}

// One partition step of the quicksort: returns the split points (j, i).
std::pair<std::int64_t, std::int64_t> Partition(std::vector<std::string>& a, std::int64_t low,
                                                std::int64_t high) {
    const std::string pivot = a[static_cast<std::size_t>(MiddleIndex(low, high))];
    std::int64_t i = low, j = high;
    do {
        while (a[static_cast<std::size_t>(i)] < pivot) {
            ++i;
            ui::DoEvents();
        }
        while (a[static_cast<std::size_t>(j)] > pivot) {
            --j;
            ui::DoEvents();
        }
        if (i <= j) {
            SwapStrings(a[static_cast<std::size_t>(i)], a[static_cast<std::size_t>(j)]);
            ++i;
            --j;
            ui::DoEvents();
        }
    } while (i <= j);
    return {j, i};
}

}  // namespace

std::string GetString(DefinitionFile& file, bool useLongPrefix) {
    (void)useLongPrefix;  // both prefix kinds are 32 bits wide
    std::string_view record;
    if (!NextRecord(file, record)) return {};
    return std::string(record);
}

void SwapStrings(std::string& a, std::string& b) {
    a.swap(b);
}

void QuickSortMe(std::vector<std::string>& array, std::int64_t low, std::int64_t high) {
    if (low == -1) low = 0;
    if (high == -1) high = static_cast<std::int64_t>(array.size()) - 1;
    if (low >= high) return;
    if (low < 0 || high >= static_cast<std::int64_t>(array.size())) Raise(failure::kSubscript);
    // The two halves are disjoint, so sorting the smaller one first gives the same result
    // while keeping the recursion depth logarithmic.
    while (low < high) {
        const auto [j, i] = Partition(array, low, high);
        if (j - low < high - i) {
            if (low < j) QuickSortMe(array, low, j);
            low = i;
        } else {
            if (i < high) QuickSortMe(array, i, high);
            high = j;
        }
    }
}

void LoadStaticDat() {
    Procedure proc(kModule, "LoadStaticDat");
    proc.Run([&] {
        const std::string path = App().DataFolder + kStaticFile;
        if (platform::FileHelper().FileExists(path)) {
            const LineList lines(proc, path, true);
            SectionParser(proc, FileKind::Static).Parse(lines);
        }
        TheLoadReport().FileListCleared();
    });
}

void LoadReferenceFiles() {
    Procedure proc(kModule, "LoadReferenceFiles");
    proc.Run([&] {
        ResetTables();
        LoadStaticDat();
        const std::string path = App().DataFolder + kDefinitionFile;
        if (platform::FileHelper().FileExists(path)) {
            LoadDefinitionFile(proc, path);
        } else {
            ReportMissingDefinitions();
        }
        TheLoadReport().FileListCleared();
        TheLoadReport().DefinitionDate(App().DefinitionDate);
        DefinitionTables& t = Definitions();
        // Fewer than two file names: everything else stays loaded, but unsorted, and the
        // scan stays off.
        const bool usable = t.FileDefs.Count >= 2;
        if (usable) SortAndIndex(proc);
        ResetTextTable(t.Md5Defs);
        WriteVersionValues();
        if (usable) TheLoadReport().ScanAllowed();
        TheLoadReport().LoadFinished(App().DefinitionDate);
    });
}

}  // namespace orvex
