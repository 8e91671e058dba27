// DefinitionCompiler.cpp: definition sources to records and records back to lines.
#include "definitions/DefinitionCompiler.h"

#include <cstdint>

#include "definitions/Cipher.h"
#include "definitions/DefinitionLoader.h"

namespace orvex {

std::vector<std::string> SourceLines(std::string_view source) {
    std::vector<std::string> lines;
    while (!source.empty()) {
        const std::size_t end = source.find('\n');
        std::string_view line = source.substr(0, end);
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        lines.emplace_back(line);
        if (end == std::string_view::npos) break;
        source.remove_prefix(end + 1);
    }
    return lines;
}

std::string CompileDefinitionLine(std::string_view line) {
    std::string text(line);
    const std::string stored = Encrypt(text, kDefinitionKey);
    const auto n = static_cast<std::uint32_t>(stored.size());
    std::string record;
    record.reserve(4 + stored.size());
    for (int shift = 0; shift < 32; shift += 8)
        record.push_back(static_cast<char>((n >> shift) & 0xFF));
    record += stored;
    return record;
}

std::string CompileDefinitionSource(std::string_view source) {
    std::string bytes;
    for (const std::string& line : SourceLines(source))
        bytes += CompileDefinitionLine(line);
    return bytes;
}

namespace {

// Whether a whole record starts at `position`: its prefix and the bytes it announces.
bool RecordFits(const std::string& bytes, std::size_t position) {
    const std::size_t left = bytes.size() - position;
    if (left < 4) return false;
    std::uint32_t n = 0;
    for (int i = 3; i >= 0; --i)
        n = n << 8 | static_cast<unsigned char>(bytes[position + i]);
    return n <= left - 4;
}

}  // namespace

DumpedDefinitions DumpDefinitionRecords(const std::string& bytes) {
    DumpedDefinitions dumped;
    DefinitionFile file{bytes, 0};
    while (!file.AtEnd()) {
        if (!RecordFits(file.bytes, file.position)) {
            dumped.complete = false;
            break;
        }
        std::string record = GetString(file, true);
        if (!record.empty()) dumped.lines.push_back(Decrypt(record, kDefinitionKey));
        dumped.endOfRecords = file.position;
    }
    return dumped;
}

}  // namespace orvex
