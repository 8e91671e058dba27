// CorpusGenerator.h: a deterministic folder tree for the scan benchmarks, with files planted
// to be found by digest and by name, the definition set that lists them, and a ClamAV
// digest database of the same digests.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "DefinitionSetGenerator.h"
#include "platform/Md5.h"

namespace orvex::bench {

struct CorpusSize {
    int files = 100000;
    int folders = 2000;
    int maxBytes = 64 * 1024;  // sizes are uniform in 0..maxBytes
    int digestPlants = 200;    // found by their MD5 (hashed extensions)
    int namePlants = 200;      // found by their name and an [Exclusion] line
    int decoys = 20;           // of each kind: listed digest on a text file, listed name
                               // without an [Exclusion] line; neither is a find
    std::uint64_t seed = 7;
};

// A file that the scan must report.
struct PlantedFile {
    std::string folder;  // relative to the tree, "/"-separated, no closing "/"
    std::string name;    // lower case
    std::string threat;
};

struct CorpusFile {
    std::string folder;
    std::string name;
    std::uint32_t size = 0;
    std::uint64_t contentSeed = 0;
};

// The plan of a corpus: every file with its size, what is planted, and the definitions.
struct CorpusPlan {
    CorpusSize size;
    std::vector<std::string> folders;  // relative, parents before children
    std::vector<CorpusFile> files;
    std::vector<PlantedFile> planted;
    DefinitionSet definitions;
    std::vector<std::string> clamDigests;  // "md5:size:name" lines
    std::uint64_t totalBytes = 0;
};

// Only these are hashed by the file scan; the floor hashes the same set.
inline const std::vector<std::string>& HashedExtensions() {
    static const std::vector<std::string> kList = {
        "exe", "html", "dls",   "htm", "sys",  "com", "sy",  "dll", "dat",
        "inf", "hta",  "class", "tmp", "temp", "ocx", "xml", "php", "css",
        "ini", "xsl",  "js",    "src", "dst",  "kwd", "pu",  "rst"};
    return kList;
}

inline bool IsHashedName(const std::string& name) {
    const std::size_t dot = name.rfind('.');
    if (dot == std::string::npos) return false;
    std::string ext = name.substr(dot + 1);
    std::transform(ext.begin(), ext.end(), ext.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    const auto& list = HashedExtensions();
    return std::find(list.begin(), list.end(), ext) != list.end();
}

namespace corpus_detail {

// The bytes of a file: a splitmix64 stream from its own seed.
inline void FillContent(std::uint64_t seed, std::uint32_t size, std::string& out) {
    detail::Random random(seed);
    out.resize(size);
    for (std::uint32_t i = 0; i < size; i += 8) {
        std::uint64_t v = random.Next();
        for (std::uint32_t k = 0; k < 8 && i + k < size; ++k, v >>= 8)
            out[i + k] = static_cast<char>(v & 0xFF);
    }
}

inline std::string Content(const CorpusFile& file) {
    std::string bytes;
    FillContent(file.contentSeed, file.size, bytes);
    return bytes;
}

// Words that the definition generator never uses, with "_": no corpus name is listed by
// chance.
inline std::string PlainName(detail::Random& random, int index, bool hashed) {
    static const char* const kWords[] = {"report", "image", "setup",  "data",   "note",
                                         "photo",  "lib",   "module", "readme", "theme",
                                         "update", "cache", "font",   "music",  "invoice"};
    static const char* const kHashed[] = {"exe", "dll", "sys", "ini", "dat", "htm", "html", "js",
                                          "xml", "tmp", "inf", "ocx", "com", "css", "php"};
    static const char* const kPlain[] = {"txt", "jpg", "doc", "pdf", "png",
                                         "mp3", "log", "cpp", "h",   "zip"};
    std::string name = std::string(kWords[random.Below(15)]) + "_" + std::to_string(index) + ".";
    name += hashed ? kHashed[random.Below(15)] : kPlain[random.Below(10)];
    return name;
}

// Inserts `lines` right after the header line of a section.
inline void InsertAfterHeader(std::vector<std::string>& d, const std::string& header,
                              const std::vector<std::string>& lines) {
    const auto at = std::find(d.begin(), d.end(), header);
    if (at == d.end()) throw std::logic_error("no section " + header);
    d.insert(at + 1, lines.begin(), lines.end());
}

// Drops `count` lines from the end of the last section, keeping the file's line count.
inline void TrimLastSection(std::vector<std::string>& d, std::size_t count) {
    const auto end = d.end() - 1;  // the last "[End]"
    d.erase(end - static_cast<std::ptrdiff_t>(count), end);
}

struct Plants {
    std::vector<std::string> md5, files, exclusion;
    std::map<std::string, std::uint32_t> sizeOfDigest;
};

// Turns some files of the plan into planted finds and decoys, and lists them.
inline Plants Plant(CorpusPlan& plan) {
    Plants lines;
    const CorpusSize& s = plan.size;
    const int stride = s.files / (s.digestPlants + s.namePlants + 2 * s.decoys + 1);
    int next = stride / 2;
    auto take = [&]() -> CorpusFile& {
        CorpusFile& file = plan.files[static_cast<std::size_t>(next)];
        next += stride;
        return file;
    };
    for (int i = 0; i < s.digestPlants; ++i) {
        CorpusFile& file = take();
        file.name = "benchdigest_" + std::to_string(i) + (i % 2 ? ".dll" : ".exe");
        file.size = std::max<std::uint32_t>(file.size, 1);  // the empty file's digest is shared
        const std::string threat = "Bench.Digest." + std::to_string(i);
        const std::string digest = platform::Md5Hex(Content(file));
        lines.md5.push_back(digest + "|" + threat);
        lines.sizeOfDigest[digest] = file.size;
        plan.planted.push_back({file.folder, file.name, threat});
    }
    for (int i = 0; i < s.namePlants; ++i) {
        CorpusFile& file = take();
        file.name = "benchname_" + std::to_string(i) + (i % 2 ? ".txt" : ".sys");
        const std::string threat = "Bench.Name." + std::to_string(i);
        lines.files.push_back(threat + "|" + file.name);
        lines.exclusion.push_back(file.name + "|bench.name." + std::to_string(i) + "||||0");
        plan.planted.push_back({file.folder, file.name, threat});
    }
    for (int i = 0; i < s.decoys; ++i) {
        CorpusFile& text = take();
        text.name = "benchdecoy_" + std::to_string(i) + ".txt";
        text.size = std::max<std::uint32_t>(text.size, 1);
        const std::string digest = platform::Md5Hex(Content(text));
        lines.md5.push_back(digest + "|Bench.Decoy." + std::to_string(i));
        lines.sizeOfDigest[digest] = text.size;
        CorpusFile& named = take();
        named.name = "benchunlisted_" + std::to_string(i) + ".exe";
        lines.files.push_back("Bench.Unlisted." + std::to_string(i) + "|" + named.name);
    }
    return lines;
}

// "md5:size:name" for every [MD5] line: the real size for a corpus file, a size in the
// corpus's range for the rest.
inline std::vector<std::string> ClamDigests(const CorpusPlan& plan, const Plants& plants) {
    std::vector<std::string> out;
    const std::vector<std::string>& d = plan.definitions.definitionLines;
    auto line = std::find(d.begin(), d.end(), "[MD5]");
    for (++line; line != d.end() && *line != "[End]"; ++line) {
        const std::size_t bar = line->find('|');
        const std::string hash = line->substr(0, bar);
        // ClamAV refuses a size of 0.
        std::uint32_t size =
            1 + static_cast<std::uint32_t>(std::stoul(hash.substr(0, 6), nullptr, 16) %
                                           static_cast<unsigned>(plan.size.maxBytes));
        if (const auto known = plants.sizeOfDigest.find(hash); known != plants.sizeOfDigest.end())
            size = known->second;
        out.push_back(hash + ":" + std::to_string(size) + ":" + line->substr(bar + 1));
    }
    return out;
}

}  // namespace corpus_detail

// The whole plan; nothing is written.
inline CorpusPlan PlanCorpus(const CorpusSize& size = {}) {
    using namespace corpus_detail;
    CorpusPlan plan;
    plan.size = size;
    detail::Random random(size.seed);
    // Folder k below folder (k - 1) / 8: a tree five levels deep for 2,000 folders.
    for (int k = 0; k < size.folders; ++k) {
        char name[16];
        std::snprintf(name, sizeof name, "dir%04d", k);
        plan.folders.push_back(k == 0 ? std::string(name)
                                      : plan.folders[static_cast<std::size_t>((k - 1) / 8)] + "/" +
                                            name);
    }
    for (int i = 0; i < size.files; ++i) {
        CorpusFile file;
        file.folder = plan.folders[static_cast<std::size_t>(i % size.folders)];
        file.name = PlainName(random, i, random.Below(2) == 0);
        file.size = static_cast<std::uint32_t>(random.Below(size.maxBytes + 1));
        file.contentSeed = random.Next();
        plan.files.push_back(std::move(file));
    }
    const Plants lines = Plant(plan);
    plan.definitions = GenerateDefinitionSet();
    auto& d = plan.definitions.definitionLines;
    InsertAfterHeader(d, "[MD5]", lines.md5);
    InsertAfterHeader(d, "[Files]", lines.files);
    InsertAfterHeader(d, "[Exclusion]", lines.exclusion);
    TrimLastSection(d, lines.md5.size() + lines.files.size() + lines.exclusion.size());
    plan.clamDigests = ClamDigests(plan, lines);
    for (const CorpusFile& f : plan.files)
        plan.totalBytes += f.size;
    return plan;
}

// Where a corpus lives: the tree, the definitions, the program's folder for the scan,
// and the ClamAV database.
struct CorpusPaths {
    std::filesystem::path root;
    std::filesystem::path tree() const { return root / "tree"; }
    std::filesystem::path data() const { return root / "data"; }
    std::filesystem::path app() const { return root / "app"; }
    std::filesystem::path clamDatabase() const { return root / "clam" / "bench.hdb"; }
    std::filesystem::path doneMarker() const { return root / "corpus.done"; }
};

namespace corpus_detail {

inline void WriteBytes(const std::filesystem::path& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!out) throw std::runtime_error("cannot write " + path.string());
}

inline void WriteLines(const std::filesystem::path& path, const std::vector<std::string>& lines) {
    std::string text;
    for (const std::string& line : lines)
        text += line + "\n";
    WriteBytes(path, text);
}

// What the marker holds: a corpus made with other settings is made anew.
inline std::string Signature(const CorpusPlan& plan) {
    const CorpusSize& s = plan.size;
    return "corpus v1 files=" + std::to_string(s.files) + " folders=" + std::to_string(s.folders) +
           " max=" + std::to_string(s.maxBytes) + " digest=" + std::to_string(s.digestPlants) +
           " name=" + std::to_string(s.namePlants) + " decoys=" + std::to_string(s.decoys) +
           " seed=" + std::to_string(s.seed) + " bytes=" + std::to_string(plan.totalBytes) + "\n";
}

inline bool IsComplete(const CorpusPaths& paths, const std::string& signature) {
    std::ifstream in(paths.doneMarker(), std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    return text == signature;
}

}  // namespace corpus_detail

// Writes the tree under `paths.root` unless a complete one with the same settings is there
// already; the definitions and the ClamAV database are written every time. True when the
// tree was written now.
inline bool EnsureCorpus(const CorpusPlan& plan, const CorpusPaths& paths) {
    using namespace corpus_detail;
    namespace fs = std::filesystem;
    fs::create_directories(paths.data());
    fs::create_directories(paths.app());
    fs::create_directories(paths.clamDatabase().parent_path());
    WriteBytes(paths.data() / "ovsdef.dat", CompileLines(plan.definitions.definitionLines));
    WriteBytes(paths.data() / "ovsstatic.dat", CompileLines(plan.definitions.staticLines));
    WriteLines(paths.clamDatabase(), plan.clamDigests);
    const std::string signature = Signature(plan);
    if (IsComplete(paths, signature)) return false;
    fs::remove(paths.doneMarker());
    fs::remove_all(paths.tree());
    for (const std::string& folder : plan.folders)
        fs::create_directories(paths.tree() / folder);
    std::string bytes;
    for (const CorpusFile& file : plan.files) {
        FillContent(file.contentSeed, file.size, bytes);
        WriteBytes(paths.tree() / file.folder / file.name, bytes);
    }
    WriteBytes(paths.doneMarker(), signature);
    return true;
}

// $ORVEX_BENCH_CORPUS, else build/linux/bench-corpus below the current folder. A smaller
// corpus ($ORVEX_BENCH_FILES) gets a folder of its own.
inline CorpusPaths DefaultCorpusPaths(const CorpusSize& size) {
    const char* named = std::getenv("ORVEX_BENCH_CORPUS");
    std::string root = named && *named ? named : "build/linux/bench-corpus";
    if (size.files != CorpusSize{}.files) root += "-" + std::to_string(size.files);
    return {std::filesystem::absolute(root)};
}

// The default size, or $ORVEX_BENCH_FILES files with one folder for every 50 and plants
// in proportion (at least ten of each).
inline CorpusSize CorpusSizeFromEnvironment() {
    CorpusSize size;
    const char* files = std::getenv("ORVEX_BENCH_FILES");
    if (!files || !*files) return size;
    const int n = std::max(1000, std::atoi(files));
    size.files = n;
    size.folders = std::max(1, n / 50);
    size.digestPlants = std::max(10, n / 500);
    size.namePlants = std::max(10, n / 500);
    size.decoys = std::max(2, n / 5000);
    return size;
}

}  // namespace orvex::bench
