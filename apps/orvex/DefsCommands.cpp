// DefsCommands.cpp: the defs subcommands of orvex: compile a plain definition source into
// an enciphered .dat file, and dump a .dat file's lines.
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "Commands.h"
#include "definitions/DefinitionCompiler.h"

namespace orvex::cli {
namespace {

struct DefsOptions {
    std::string source, output, dat;
    bool json = false;
};

bool ReadNativeFile(const std::string& path, std::string& bytes) {
    std::ifstream in(path, std::ios::binary);
    if (!in) return false;
    bytes.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    return !in.bad();
}

int Compile(const DefsOptions& o) {
    std::string source;
    if (!ReadNativeFile(o.source, source)) {
        std::cerr << "orvex: cannot read " << o.source << "\n";
        return kExitError;
    }
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

int Dump(const DefsOptions& o) {
    std::string bytes;
    if (!ReadNativeFile(o.dat, bytes)) {
        std::cerr << "orvex: cannot read " << o.dat << "\n";
        return kExitError;
    }
    const DumpedDefinitions dumped = DumpDefinitionRecords(bytes);
    if (o.json) {
        nlohmann::json j = {{"lines", dumped.lines}, {"complete", dumped.complete}};
        std::cout << j.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << "\n";
    } else {
        for (const std::string& line : dumped.lines)
            std::cout << line << "\n";
    }
    if (dumped.complete) return kExitClean;
    std::cerr << "orvex: " << o.dat << ": incomplete record at byte " << dumped.endOfRecords
              << " ends the file\n";
    return kExitError;
}

}  // namespace

void AddDefsCommands(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<DefsOptions>();
    auto* defs = app.add_subcommand("defs", "Definition files for their authors");
    defs->require_subcommand(1);
    // Paths are native: under Wine a build passes "/work/..." paths, which must not be
    // taken for Windows-style options. Subcommands inherit the setting.
    defs->allow_windows_style_options(false);

    auto* compile = defs->add_subcommand(
        "compile", "Encipher a plain source (one definition line per text line) into a .dat file");
    compile->add_option("SOURCE", options->source, "plain source, CR LF or LF line ends")
        ->required();
    compile->add_option("OUT", options->output, "the .dat file to write")->required();
    compile->callback([options, &exitCode] { exitCode = Compile(*options); });

    auto* dump = defs->add_subcommand("dump", "Print the deciphered lines of a .dat file");
    dump->add_option("FILE", options->dat, "the .dat file to read")->required();
    dump->add_flag("--json", options->json, "print {\"lines\": [...], \"complete\": bool}");
    dump->callback([options, &exitCode] { exitCode = Dump(*options); });
}

}  // namespace orvex::cli
