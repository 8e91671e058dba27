// MemoryContract_test.cpp: the memory back-end held to the contract of the Win32 API.
#include "platform/contract/FilesContract.h"
#include "platform/contract/ProcessesContract.h"
#include "platform/contract/RegistryContract.h"
#include "platform/contract/SystemContract.h"
#include "platform/memory/MemoryPlatform.h"

namespace orvex::testing {
namespace {

using namespace platform::memory;

struct MemoryFilesMaker {
    static constexpr Difference kDifferences[] = {
        {"AFileHeldOpenElsewhereIsNotReplaced",
         "answers 70, not 75, and the engine's tests rely on it"},
    };
    MemoryFilesMaker() { fs.addFolder(folder()); }
    platform::FileSystem& files() { return fs; }
    std::string folder() const { return "C:\\Scratch"; }
    void lock(const std::string& path, bool on) { fs.lock(path, on); }

    MemoryFileSystem fs;
};

struct MemoryRegistryMaker {
    MemoryRegistryMaker() { reg.addKey(platform::Hive::CurrentUser, root()); }
    platform::RegistryBackend& registry() { return reg; }
    std::string root() const { return "Software\\OrvexSentryTest"; }

    MemoryRegistry reg;
};

struct MemoryProcessesMaker {
    static constexpr Difference kDifferences[] = {
        {"AStartedProgramIsListedAndEndedByTerminate", "starts are only recorded"},
        {"NothingToEndOrStartFails", "starts are only recorded, whatever the path"},
    };
    MemoryProcessesMaker() { procs.addProcess(selfImage(), "", procs.currentProcessId()); }
    platform::ProcessApi& processes() { return procs; }
    std::string selfImage() const { return "C:\\Orvex\\OrvexSentry.exe"; }
    ChildProgram child() { return {}; }
    bool ended(std::uint32_t) { return false; }

    MemoryProcesses procs;
};

struct MemorySystemMaker : MemoryFilesMaker {
    platform::System& system() { return sys; }
    void pause(std::uint32_t ms) { sys.advanceTicks(ms); }
    std::string mutexName(const std::string& stem) const { return stem; }
    std::string executable() { return sys.executablePath(); }
    bool usLocale() const { return true; }

    MemorySystem sys{fs};
};

INSTANTIATE_TYPED_TEST_SUITE_P(Memory, FilesContract, MemoryFilesMaker);
INSTANTIATE_TYPED_TEST_SUITE_P(Memory, RegistryContract, MemoryRegistryMaker);
INSTANTIATE_TYPED_TEST_SUITE_P(Memory, ProcessesContract, MemoryProcessesMaker);
INSTANTIATE_TYPED_TEST_SUITE_P(Memory, SystemContract, MemorySystemMaker);

}  // namespace
}  // namespace orvex::testing
