// ShortNames.cpp: 8.3 name generation in the manner of NTFS.
#include "platform/memory/ShortNames.h"

#include <algorithm>

#include "platform/AnsiCase.h"

namespace orvex::platform::memory {
namespace {

bool IsForbiddenIn83(char c) {
    const auto u = static_cast<unsigned char>(c);
    if (u < 0x20) return true;
    return std::string_view("\"*+,./:;<=>?[\\]| ").find(c) != std::string_view::npos;
}

bool IsValidPart(std::string_view part, std::size_t maxLength) {
    if (part.size() > maxLength) return false;
    for (char c : part)
        if (IsForbiddenIn83(c)) return false;
    return true;
}

// Drops blanks and dots, turns the characters 8.3 names refuse into "_", capitalises.
std::string Squeeze(std::string_view text) {
    std::string out;
    for (char c : text) {
        if (c == ' ' || c == '.') continue;
        out += std::string_view("+,;=[]").find(c) != std::string_view::npos ? '_' : AnsiUpper(c);
    }
    return out;
}

}  // namespace

bool IsShortName(std::string_view name) {
    if (name == "." || name == "..") return true;
    const std::size_t dot = name.find('.');
    const std::string_view base = name.substr(0, dot);
    if (base.empty() || !IsValidPart(base, 8)) return false;
    if (dot == std::string_view::npos) return true;
    const std::string_view ext = name.substr(dot + 1);
    return !ext.empty() && IsValidPart(ext, 3);
}

std::string MakeShortName(std::string_view longName,
                          const std::function<bool(std::string_view)>& taken) {
    if (IsShortName(longName)) return "";
    std::string_view stem = longName;
    while (!stem.empty() && stem.front() == '.')
        stem.remove_prefix(1);
    const std::size_t dot = stem.rfind('.');
    std::string base = Squeeze(stem.substr(0, dot));
    std::string ext = dot == std::string_view::npos ? "" : Squeeze(stem.substr(dot + 1));
    if (ext.size() > 3) ext.resize(3);
    if (base.empty()) base.push_back('_');
    for (unsigned n = 1; n < 1000000; ++n) {
        const std::string tail = std::string("~").append(std::to_string(n));
        const std::size_t keep = std::min<std::size_t>(base.size(), n < 10 ? 6 : 8 - tail.size());
        std::string candidate = base.substr(0, keep) + tail;
        if (!ext.empty()) candidate.append(".").append(ext);
        if (!taken(candidate)) return candidate;
    }
    return "";  // a folder with a million clashing names has no short name left
}

}  // namespace orvex::platform::memory
