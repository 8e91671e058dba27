// DefsCommands.cpp: the defs subcommands of orvex: compile a plain definition source into
// an enciphered .dat file, and dump a .dat file's lines.
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string>

#include "Commands.h"
#include "definitions/DefinitionCompiler.h"

namespace orvex::cli {
namespace {

// Reads a file named on the command line; false with a message naming it as typed.
bool ReadNativeFile(const std::string& path, std::string& bytes) {
    std::error_code error;
    if (std::filesystem::is_directory(path, error)) {
        std::cerr << "orvex: " << path << " is a folder; name a file\n";
        return false;
    }
    std::ifstream in(path, std::ios::binary);
    if (in) bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    if (in && !in.bad()) return true;
    std::cerr << "orvex: cannot read " << path
              << (std::filesystem::exists(path, error) ? "" : ": no such file") << "\n";
    return false;
}

}  // namespace

int CompileDefinitions(const DefsCompileOptions& o) {
    std::string source;
    if (!ReadNativeFile(o.source, source)) return kExitError;
    const std::string bytes = CompileDefinitionSource(source);
    std::ofstream out(o.output, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.close();
    if (!out) {
        std::cerr << "orvex: cannot write " << o.output << "\n";
        return kExitError;
    }
    return kExitClean;
}

int DumpDefinitions(const DefsDumpOptions& o) {
    std::string bytes;
    if (!ReadNativeFile(o.file, bytes)) return kExitError;
    const DumpedDefinitions dumped = DumpDefinitionRecords(bytes);
    if (o.json) {
        nlohmann::json j = {{"lines", dumped.lines}, {"complete", dumped.complete}};
        std::cout << j.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << "\n";
    } else {
        for (const std::string& line : dumped.lines)
            std::cout << line << "\n";
    }
    if (dumped.complete) return kExitClean;
    std::cerr << "orvex: " << o.file << ": incomplete record at byte " << dumped.endOfRecords
              << " ends the file\n";
    return kExitError;
}

}  // namespace orvex::cli
