// DefinitionSetGenerator.h: large, deterministic definition sets for the benchmarks: the
// plain lines of an ovsdef.dat and an ovsstatic.dat, and their compiled bytes.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "definitions/DefinitionCompiler.h"

namespace orvex::bench {

struct DefinitionSetSize {
    int totalLines = 200000;  // lines of ovsdef.dat, headers and "[End]" lines included
    int md5Lines = 50000;
    int fileLines = 50000;
    std::uint64_t seed = 1;
};

struct DefinitionSet {
    std::vector<std::string> definitionLines;  // ovsdef.dat
    std::vector<std::string> staticLines;      // ovsstatic.dat
};

namespace detail {

// splitmix64: a small generator whose sequence is the same on every platform.
class Random {
  public:
    explicit Random(std::uint64_t seed) : state_(seed) {}
    std::uint64_t Next() {
        std::uint64_t z = (state_ += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }
    int Below(int n) { return static_cast<int>(Next() % static_cast<std::uint64_t>(n)); }

  private:
    std::uint64_t state_;
};

inline std::string Hex(Random& random, int digits) {
    static const char kDigits[] = "0123456789abcdef";
    std::string out;
    while (static_cast<int>(out.size()) < digits) {
        std::uint64_t v = random.Next();
        for (int i = 0; i < 16 && static_cast<int>(out.size()) < digits; ++i, v >>= 4)
            out.push_back(kDigits[v & 15]);
    }
    return out;
}

inline std::string Word(Random& random) {
    static const char* const kParts[] = {"click",  "search", "key",    "dial", "net",   "spy",
                                         "pop",    "shop",   "bar",    "mate", "watch", "agent",
                                         "helper", "tool",   "loader", "hook", "link",  "zap"};
    std::string word = kParts[random.Below(18)];
    word += kParts[random.Below(18)];
    return word;
}

inline std::string Threat(Random& random) {
    std::string name = Word(random);
    name[0] = static_cast<char>(name[0] - 'a' + 'A');
    return name + "." + std::to_string(random.Below(20000));
}

inline std::string FileName(Random& random) {
    static const char* const kExtensions[] = {"exe", "dll", "sys", "ocx",
                                              "dat", "ini", "js",  "tmp"};
    return Word(random) + std::to_string(random.Below(1000)) + "." + kExtensions[random.Below(8)];
}

inline std::string Clsid(Random& random) {
    const std::string h = Hex(random, 32);
    return "{" + h.substr(0, 8) + "-" + h.substr(8, 4) + "-" + h.substr(12, 4) + "-" +
           h.substr(16, 4) + "-" + h.substr(20, 12) + "}";
}

inline std::string RegistryLine(Random& random) {
    static const char* const kRoots[] = {"HKEY_LOCAL_MACHINE", "HKEY_CURRENT_USER",
                                         "HKEY_CLASSES_ROOT"};
    std::string line = Threat(random) + "|" + kRoots[random.Below(3)] + "|Software\\" +
                       Word(random) + "\\" + Word(random);
    if (random.Below(3) == 0) line += "|" + Word(random) + ".example";
    return line;
}

inline std::string ExclusionLine(Random& random) {
    static const char* const kFolders[] = {"", "systemdir", "windowsdir\\temp", "program files"};
    static const char* const kSizes[] = {"", ">20000", "<5000*>100000", "1234"};
    return FileName(random) + "|" + (random.Below(2) ? "" : Word(random)) + "|" +
           kSizes[random.Below(4)] + "|" + kFolders[random.Below(4)] + "|3|" +
           std::to_string(random.Below(3));
}

inline void Section(std::vector<std::string>& lines, const char* header, int count,
                    const std::function<std::string()>& make) {
    lines.emplace_back(header);
    for (int i = 0; i < count; ++i)
        lines.push_back(make());
    lines.emplace_back("[End]");
}

}  // namespace detail

inline const char* const kCategoryNames[18] = {"Adware",
                                               "Cookies",
                                               "Homepage Hijacker",
                                               "Searchpage Hijacker",
                                               "Rogue Activex",
                                               "Drive by Download",
                                               "BHO",
                                               "Emailer",
                                               "Keylogger",
                                               "Dialer",
                                               "Rat",
                                               "Retrospy",
                                               "Trojan",
                                               "Malware",
                                               "Thiefware",
                                               "Dataminer",
                                               "Spyware",
                                               "Surveillance Software"};

// A definition set of the given size. ovsdef.dat holds the MD5 and file lines and spreads the
// rest over the other sections; ovsstatic.dat holds the categories and a few hundred lines.
inline DefinitionSet GenerateDefinitionSet(const DefinitionSetSize& size = {}) {
    using namespace detail;
    Random random(size.seed);
    DefinitionSet set;
    auto& d = set.definitionLines;
    d.reserve(static_cast<std::size_t>(size.totalLines));
    d.push_back("Ver=11/15/2026");
    Section(d, "[MD5]", size.md5Lines, [&] { return Hex(random, 32) + "|" + Threat(random); });
    Section(d, "[Files]", size.fileLines, [&] { return Threat(random) + "|" + FileName(random); });
    // Eight more sections with a header and an "[End]" each, plus the version line.
    const int rest = size.totalLines - static_cast<int>(d.size()) - 8 * 2;
    const int share = rest / 10;
    Section(d, "[Add\\Remove]", share,
            [&] { return Threat(random) + "|" + Word(random) + " Uninstall"; });
    Section(d, "[Startup]", share, [&] { return Threat(random) + "|" + FileName(random); });
    Section(d, "[CLSID]", share, [&] { return Threat(random) + "|" + Clsid(random); });
    Section(d, "[Registry]", 2 * share, [&] { return RegistryLine(random); });
    Section(d, "[Exclusion]", share, [&] { return ExclusionLine(random); });
    Section(d, "[DoNotUnRegister]", share / 5, [&] { return Hex(random, 32) + "|0"; });
    Section(d, "[Descriptions]", 18, [&, i = 0]() mutable {
        const int n = i++;
        return std::string(1, static_cast<char>('A' + n)) + "|" + kCategoryNames[n];
    });
    const int itemLines = size.totalLines - static_cast<int>(d.size()) - 2;
    Section(d, "[ItemList]", itemLines, [&] {
        return Threat(random) + "|" + std::to_string(1 + random.Below(5)) + "|" +
               std::string(1, static_cast<char>('A' + random.Below(18)));
    });

    auto& s = set.staticLines;
    s.push_back("Ver=1.0.3");
    Section(s, "[Descriptions]", 18, [&, i = 0]() mutable {
        const int n = i++;
        return std::string(1, static_cast<char>('A' + n)) + "|" + kCategoryNames[n];
    });
    Section(s, "[ItemList]", 300, [&] { return Threat(random) + "|3|AQ"; });
    Section(s, "[Exclusion]", 200, [&] { return ExclusionLine(random); });
    return set;
}

// The bytes of a definition file holding these lines.
inline std::string CompileLines(const std::vector<std::string>& lines) {
    std::string bytes;
    for (const std::string& line : lines)
        bytes += CompileDefinitionLine(line);
    return bytes;
}

}  // namespace orvex::bench
