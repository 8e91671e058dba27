// FileScan.cpp: the folder walk, the judgment of one file, and its digest.
#include "scan/FileScan.h"

#include <algorithm>
#include <array>
#include <memory>
#include <new>
#include <string_view>

#include "core/AppState.h"
#include "core/ErrorHandler.h"
#include "core/Text.h"
#include "definitions/DefinitionTables.h"
#include "platform/Failure.h"
#include "platform/Md5.h"
#include "platform/Platform.h"
#include "scan/DefinitionLookup.h"
#include "scan/Recorder.h"
#include "scan/ScanLogWrite.h"
#include "scan/ScanProgress.h"
#include "ui/UiHost.h"

namespace orvex {
namespace {

constexpr const char* kModule = "colFiles";
constexpr std::size_t kDigestLength = 32;
constexpr std::size_t kReadChunk = 64 * 1024;

// Only these are hashed: hashing is the costly step. "dls", "sy", "pu" and "kwd" belong.
constexpr std::array<std::string_view, 26> kHashedExtensions = {
    "exe",  "html", "dls", "htm", "sys", "com", "sy",  "dll", "dat", "inf", "hta", "class", "tmp",
    "temp", "ocx",  "xml", "php", "css", "ini", "xsl", "js",  "src", "dst", "kwd", "pu",    "rst"};

bool Stopped() {
    return IsTrue(App().StopRequested);
}

bool IsHashed(const std::string& ext) {
    for (std::string_view listed : kHashedExtensions)
        if (ext == listed) return true;
    return false;
}

// The text the digest routine gives for a file it cannot read, blank-padded as its
// output buffer was.
std::string NotFoundText() {
    std::string text = kMd5FileNotFound;
    text.resize(kDigestLength, ' ');
    return text;
}

// A search that cannot be opened finds nothing; a folder that can't be read is passed by.
std::vector<platform::DirEntry> Search(const std::string& folder) {
    try {
        return platform::Files().listNames(folder);
    } catch (const Failure&) {
        return {};
    } catch (const std::bad_alloc&) {
        return {};
    }
}

// The name as the search returns it, cut at its first NUL.
std::string Cleaned(const std::string& name) {
    const std::size_t nul = name.find('\0');
    return nul == std::string::npos ? name : name.substr(0, nul);
}

void Report(const std::string& folder, const std::string& fileName, const char* action,
            const std::string& threat) {
    std::int32_t listIndex = 0;
    ScanLogWrite(folder, fileName, action, threat, "FileSystem", VbFalse, listIndex);
}

// The second pass over one folder: its files, judged in order. False when a stop ended it.
bool JudgeFiles(const std::string& root, const std::string& relative) {
    const std::string folder = root + relative + "\\";
    for (const platform::DirEntry& entry : Search(folder)) {
        if (entry.isFolder()) continue;
        ui::DoEvents();
        const std::string name = Cleaned(entry.name);
        if (Stopped()) return false;
        ++App().ItemsScanned;
        TheScanProgress().ItemsScanned(Lng(706), App().ItemsScanned);
        ScumFile(LCase(name), folder, VbFalse);
    }
    return true;
}

// One folder of the walk: its first-pass entries and how far the pass has gone.
struct WalkFrame {
    std::string relative;
    std::vector<platform::DirEntry> entries;
    std::size_t next = 0;
};

// `count` records of a walk that neither hit nor end it, each a stop test and a yield, then
// the stop test of the record after them. False when a stop request ended the walk.
bool PassRecords(std::size_t count) {
    if (count > 0 && !Stopped()) ui::DoEvents(static_cast<std::int64_t>(count), Stopped);
    return !Stopped();
}

// MD5 pass over Md5Index: true when the digest is listed. The walk goes from the first
// record until FirstChar passes the digest's first character; the lookup tells where the
// hits and that end are, and the records between them are passed in bulk.
bool DigestListed(const DefinitionLookup& lookup, const std::string& md5,
                  const std::string& fileName, const std::string& folder, VbBool testOnly) {
    const auto& index = Definitions().Md5Index;
    const int first = Asc(md5);
    const std::size_t end = lookup.DigestWalkEnd(first);
    bool recognised = false;
    std::size_t at = 0;
    for (const auto& entry : lookup.DigestHits(md5)) {
        const std::size_t hit = entry.second;
        if (hit >= end || index[hit].FirstChar != first) continue;
        if (!PassRecords(hit - at)) return recognised;
        recognised = true;
        if (!IsTrue(testOnly)) {
            Report(folder, fileName, "found", index[hit].Name);
            return true;
        }
        ui::DoEvents();
        at = hit + 1;
    }
    PassRecords(end - at);
    return recognised;
}

// Name pass over FileIndex; each threat that lists the name and passes ExclusionRoutine
// is reported. A record yields before its first-character test, so the record that ends
// the walk yields too.
bool NameListed(const DefinitionLookup& lookup, const std::string& fileName,
                const std::string& folder, VbBool testOnly) {
    const auto& index = Definitions().FileIndex;
    const int first = Asc(fileName);
    const std::size_t walked = static_cast<std::size_t>(std::max<std::int64_t>(
        0, std::min<std::int64_t>(Definitions().FileDefs.Count, index.UBound()) + 1));
    const std::size_t end = std::min(lookup.NameWalkEnd(first), walked);
    bool recognised = false;
    std::size_t at = 0;
    for (const auto& entry : lookup.NameHits(fileName)) {
        const std::size_t hit = entry.second;
        if (hit >= end) break;
        if (!PassRecords(hit - at)) return recognised;
        ui::DoEvents();
        ui::DoEvents();
        ui::DoEvents();
        const std::string& threat = index[hit].Name;
        const std::int32_t code = ExclusionRoutine(fileName, folder, threat);
        if (code == 0 || code == 1) {
            recognised = true;
            if (!IsTrue(testOnly)) Report(folder, fileName, "found", threat);
        } else if (code == 2) {
            recognised = true;
            Report(folder, fileName, "suspect", threat);
        }
        at = hit + 1;
    }
    if (PassRecords(end - at) && end < walked) ui::DoEvents();
    return recognised;
}

// The program never judges its own folder or anything below it. An unset folder holds
// nothing.
bool InOwnFolder(const std::string& folder) {
    const std::string& own = App().AppPath;
    return !own.empty() && InStr(LCase(folder), LCase(own)) > 0;
}

}  // namespace

void colFiles::LoadFiles(const std::string& root, const std::string& relative,
                         std::int32_t& status) {
    (void)status;
    Procedure proc(kModule, "LoadFiles");
    proc.Run([&] {
        if (Stopped()) return;
        const ScopedDefinitionLookup lookup;
        // Depth first, subfolders before files, on a stack of its own: a deep tree must
        // not exhaust the call stack.
        std::vector<WalkFrame> stack;
        stack.push_back({relative, Search(root + relative + "\\"), 0});
        while (!stack.empty()) {
            if (Stopped()) return;
            WalkFrame& frame = stack.back();
            if (frame.next < frame.entries.size()) {
                const platform::DirEntry& entry = frame.entries[frame.next++];
                if (!entry.isFolder()) continue;
                const std::string name = Cleaned(entry.name);
                if (name == "." || name == "..") continue;
                ui::DoEvents();
                if (Stopped()) return;
                std::string child = frame.relative + "\\" + name;
                std::vector<platform::DirEntry> entries = Search(root + child + "\\");
                stack.push_back({std::move(child), std::move(entries), 0});
                continue;
            }
            const std::string done = std::move(frame.relative);
            stack.pop_back();
            if (!JudgeFiles(root, done)) return;
        }
    });
}

void colFiles::LoadFiles(const std::string& root, const std::string& relative) {
    std::int32_t status = 0;
    LoadFiles(root, relative, status);
}

void colFiles::Remove(std::int32_t index) {
    if (index < 1 || index > Count()) Raise(failure::kSubscript);
    items_.erase(items_.begin() + (index - 1));
}

VbBool ScumFile(const std::string& fileName, const std::string& folder, VbBool testOnly) {
    bool recognised = false;
    Procedure proc(kModule, "ScumFile");
    proc.Run([&] {
        if (InOwnFolder(folder)) return;
        const ScopedDefinitionLookup scoped;
        if (IsHashed(JustExt(fileName))) {
            const std::string md5 = MD5File(folder + fileName);
            if (md5.find(kMd5FileNotFound) == std::string::npos)
                recognised = DigestListed(scoped.Lookup(), md5, fileName, folder, testOnly);
            // An MD5 hit decides alone, and is always confirmed.
            if (recognised || Stopped()) return;
        }
        recognised = NameListed(scoped.Lookup(), fileName, folder, testOnly);
    });
    return ToVb(recognised);
}

std::string JustExt(const std::string& fileName) {
    if (fileName.find('.') == std::string::npos) return {};
    std::size_t dot = fileName.size() - 1;
    while (dot > 0 && fileName[dot] != '.')
        --dot;
    return LCase(std::string_view(fileName).substr(dot + 1));
}

std::string MD5File(const std::string& path) {
    try {
        auto stream = platform::Files().open(path, platform::OpenMode::Read);
        platform::Md5 digest;
        // One buffer for every file: the scan hashes tens of thousands of them.
        static const std::unique_ptr<char[]> chunk(new char[kReadChunk]);
        while (const std::size_t got = stream->read(chunk.get(), kReadChunk))
            digest.update(chunk.get(), got);
        return digest.hexDigest();
    } catch (const Failure&) {
        return NotFoundText();
    } catch (const std::bad_alloc&) {
        return NotFoundText();
    }
}

}  // namespace orvex
