// DefinitionCompiler.h: turns the plain source of a definition file into its enciphered
// records and back, for definition authors and their tools.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace orvex {

// The lines of a source text: split at LF, a CR before the LF dropped. A final line end
// adds no empty line.
std::vector<std::string> SourceLines(std::string_view source);

// One record: the 4-byte little-endian length, then the line enciphered under the
// definition key.
std::string CompileDefinitionLine(std::string_view line);

// The definition file for a source text: one record per source line, in order.
std::string CompileDefinitionSource(std::string_view source);

// The records of a definition file, deciphered but not trimmed (failures read "ERR1" or
// "ERR2"), without the zero-length records the loader skips.
struct DumpedDefinitions {
    std::vector<std::string> lines;
    bool complete = true;          // false when an incomplete record ends the bytes
    std::size_t endOfRecords = 0;  // offset after the last complete record
};
DumpedDefinitions DumpDefinitionRecords(const std::string& bytes);

}  // namespace orvex
