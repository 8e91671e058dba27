// corpus_gen.cpp: writes the scan benchmarks' corpus (tree, definitions, ClamAV database)
// ahead of a run, or checks that a complete one is there.
#include <exception>
#include <filesystem>
#include <iostream>

#include "CorpusGenerator.h"

int main(int argc, char** argv) {
    using namespace orvex::bench;
    try {
        const CorpusPlan plan = PlanCorpus(CorpusSizeFromEnvironment());
        CorpusPaths paths = DefaultCorpusPaths(plan.size);
        if (argc > 1) paths.root = std::filesystem::absolute(argv[1]);
        const bool written = EnsureCorpus(plan, paths);
        std::cout << paths.root.string() << ": " << plan.files.size() << " files in "
                  << plan.folders.size() << " folders, " << plan.totalBytes / (1024 * 1024)
                  << " MiB, " << plan.planted.size() << " planted finds, "
                  << plan.definitions.definitionLines.size() << " definition lines, "
                  << plan.clamDigests.size() << " ClamAV digests ("
                  << (written ? "written" : "already complete") << ")\n";
        return 0;
    } catch (const std::exception& e) {
        std::cerr << "corpus_gen: " << e.what() << "\n";
        return 2;
    }
}
