// IniFile.cpp: profile-file reading and writing over the FileSystem primitives.
#include "platform/IniFile.h"

#include <optional>
#include <vector>

#include "platform/AnsiCase.h"
#include "platform/Failure.h"

namespace orvex::platform {
namespace {

std::string_view Trim(std::string_view text) {
    const auto first = text.find_first_not_of(" \t");
    if (first == std::string_view::npos) return {};
    const auto last = text.find_last_not_of(" \t");
    return text.substr(first, last - first + 1);
}

std::string_view TrimRight(std::string_view text) {
    const auto last = text.find_last_not_of(" \t");
    return last == std::string_view::npos ? std::string_view() : text.substr(0, last + 1);
}

std::vector<std::string> SplitLines(const std::string& bytes) {
    std::vector<std::string> lines;
    std::size_t start = 0;
    while (start < bytes.size()) {
        std::size_t end = bytes.find('\n', start);
        if (end == std::string::npos) end = bytes.size();
        std::string line = bytes.substr(start, end - start);
        if (!line.empty() && line.back() == '\r') line.pop_back();
        lines.push_back(std::move(line));
        start = end + 1;
    }
    return lines;
}

// The whole file; std::nullopt when it cannot be read (missing file included).
std::optional<std::string> ReadFile(FileSystem& files, std::string_view file) {
    try {
        auto stream = files.open(file, OpenMode::Read);
        std::string bytes;
        char buffer[4096];
        while (std::size_t n = stream->read(buffer, sizeof buffer))
            bytes.append(buffer, n);
        return bytes;
    } catch (const Failure&) {
        return std::nullopt;
    }
}

// The name of a section header line ("[ name ]"), or std::nullopt for any other line.
std::optional<std::string_view> SectionName(std::string_view line) {
    line = Trim(line);
    if (line.empty() || line.front() != '[') return std::nullopt;
    line.remove_prefix(1);
    const auto close = line.find(']');
    return Trim(line.substr(0, close));
}

// The key of an entry line, or std::nullopt for a line without "=" or a comment.
std::optional<std::string_view> EntryKey(std::string_view line) {
    const auto eq = line.find('=');
    if (eq == std::string_view::npos || Trim(line).starts_with(';')) return std::nullopt;
    return Trim(line.substr(0, eq));
}

std::string_view Unquote(std::string_view value) {
    if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') &&
        value.back() == value.front())
        return value.substr(1, value.size() - 2);
    return value;
}

std::string CutToCapacity(std::string_view text, std::size_t capacity) {
    if (capacity == 0) return {};
    return std::string(text.substr(0, capacity - 1));
}

// The range of lines that belongs to the first section named `section`: the header's
// index and the index one past its last line.
struct SectionRange {
    std::size_t header = 0, end = 0;
};

std::optional<SectionRange> FindSection(const std::vector<std::string>& lines,
                                        std::string_view section) {
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const auto name = SectionName(lines[i]);
        if (!name || !EqualsNoCase(*name, section)) continue;
        std::size_t end = i + 1;
        while (end < lines.size() && !SectionName(lines[end]))
            ++end;
        return SectionRange{i, end};
    }
    return std::nullopt;
}

std::optional<std::size_t> FindEntry(const std::vector<std::string>& lines, SectionRange range,
                                     std::string_view key) {
    for (std::size_t i = range.header + 1; i < range.end; ++i) {
        const auto name = EntryKey(lines[i]);
        if (name && EqualsNoCase(*name, key)) return i;
    }
    return std::nullopt;
}

void PutEntry(std::vector<std::string>& lines, std::string_view section, std::string_view key,
              std::string_view value) {
    const std::string entry = std::string(key) + "=" + std::string(value);
    const auto range = FindSection(lines, section);
    if (!range) {
        lines.push_back(std::string("[").append(section).append("]"));
        lines.push_back(entry);
        return;
    }
    if (auto at = FindEntry(lines, *range, key)) {
        lines[*at] = entry;
        return;
    }
    std::size_t insertAt = range->end;
    while (insertAt > range->header + 1 && Trim(lines[insertAt - 1]).empty())
        --insertAt;
    lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(insertAt), entry);
}

}  // namespace

std::string ReadProfileString(FileSystem& files, std::string_view section, std::string_view key,
                              std::string_view defaultValue, std::size_t capacity,
                              std::string_view file) {
    const std::string fallback = CutToCapacity(TrimRight(defaultValue), capacity);
    const auto bytes = ReadFile(files, file);
    if (!bytes) return fallback;
    const auto lines = SplitLines(*bytes);
    const auto range = FindSection(lines, section);
    if (!range) return fallback;
    const auto at = FindEntry(lines, *range, key);
    if (!at) return fallback;
    const std::string_view line = lines[*at];
    return CutToCapacity(Unquote(Trim(line.substr(line.find('=') + 1))), capacity);
}

bool WriteProfileString(FileSystem& files, std::string_view section, std::string_view key,
                        std::string_view value, std::string_view file) {
    std::vector<std::string> lines;
    if (files.fileExists(file)) {
        const auto bytes = ReadFile(files, file);
        if (!bytes) return false;
        lines = SplitLines(*bytes);
    }
    PutEntry(lines, section, key, value);
    std::string text;
    for (const auto& line : lines)
        text += line + "\r\n";
    try {
        auto stream = files.open(file, OpenMode::Write);
        stream->write(text.data(), text.size());
        stream->flush();
        return true;
    } catch (const Failure&) {
        return false;
    }
}

}  // namespace orvex::platform
