// PosixContract_test.cpp: the POSIX back-end held to the contract of the Win32 API, on a
// scratch folder, a scratch registry file and real processes.
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

#include "platform/contract/FilesContract.h"
#include "platform/contract/ProcessesContract.h"
#include "platform/contract/RegistryContract.h"
#include "platform/contract/SystemContract.h"
#include "platform/posix/PosixFiles.h"
#include "platform/posix/PosixProcesses.h"
#include "platform/posix/PosixRegistry.h"
#include "platform/posix/PosixSystem.h"
#include "platform/posix/PosixTestFolder.h"

namespace orvex::testing {
namespace {

using namespace platform;

void Pause(int ms) {
    std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}

std::string SelfImage() {
    return *EnginePathFromNative(std::filesystem::read_symlink("/proc/self/exe").string());
}

struct PosixFilesMaker {
    static constexpr Difference kDifferences[] = {
        {"FilesHeldOpenElsewhereRefuseWithSeventy", "POSIX has no mandatory file locks"},
        {"AFileHeldOpenElsewhereIsNotReplaced", "POSIX has no mandatory file locks"},
        {"NamesFollowWindows", "names are case-sensitive, may end in dots, have no 8.3 forms"},
    };
    PosixFilesMaker() { tmp.makeFolder("Scratch"); }
    FileSystem& files() { return fs; }
    std::string folder() const { return "C:\\Scratch"; }
    void lock(const std::string&, bool) {}

    PosixTestFolder tmp;
    PosixFiles fs{tmp.path()};
};

struct PosixRegistryMaker {
    PosixRegistryMaker() { reg.createKey(Hive::CurrentUser, root()); }
    RegistryBackend& registry() { return reg; }
    std::string root() const { return "Software\\OrvexSentryTest"; }

    PosixTestFolder tmp;
    PosixRegistry reg{tmp / "registry.json"};
};

// Gone, or a zombie that someone else must reap: nothing is left for this process.
bool GoneFromUs(std::uint32_t pid) {
    std::ifstream in("/proc/" + std::to_string(pid) + "/status");
    const std::string status(std::istreambuf_iterator<char>(in), {});
    const bool ours =
        status.find("PPid:\t" + std::to_string(::getpid()) + "\n") != std::string::npos;
    return status.empty() || (status.find("State:\tZ") != std::string::npos && !ours);
}

struct PosixProcessesMaker {
    ProcessApi& processes() { return procs; }
    std::string selfImage() const { return SelfImage(); }
    // An unusual duration finds our child among any other sleeps.
    ChildProgram child() const {
        return {"C:\\bin\\sleep", std::to_string(3000 + ::getpid() % 1000) + ".5",
                *EnginePathFromNative(std::filesystem::canonical("/bin/sleep").string())};
    }
    bool ended(std::uint32_t pid) {
        for (int i = 0; i < 500; ++i, Pause(10))
            if (GoneFromUs(pid)) return true;
        return false;
    }

    PosixProcesses procs;
};

struct PosixSystemMaker : PosixFilesMaker {
    static constexpr Difference kDifferences[] = {
        {"ANamedMutexIsOwnedOnceAndSeenUntilItsLastHandleCloses",
         "a lock file is a mutex only while someone owns it"},
    };
    ~PosixSystemMaker() {
        for (const auto& name : names)
            ::unlink(MutexLockPath(name).c_str());
    }
    System& system() { return sys; }
    void pause(int ms) { Pause(ms); }
    std::string mutexName(const std::string& stem) {
        return names.emplace_back("Global\\" + stem + "_" + std::to_string(::getpid()));
    }
    std::string executable() const { return SelfImage(); }
    bool usLocale() const { return true; }

    PosixSystem sys{fs};
    std::vector<std::string> names;
};

INSTANTIATE_TYPED_TEST_SUITE_P(Posix, FilesContract, PosixFilesMaker);
INSTANTIATE_TYPED_TEST_SUITE_P(Posix, RegistryContract, PosixRegistryMaker);
INSTANTIATE_TYPED_TEST_SUITE_P(Posix, ProcessesContract, PosixProcessesMaker);
INSTANTIATE_TYPED_TEST_SUITE_P(Posix, SystemContract, PosixSystemMaker);

}  // namespace
}  // namespace orvex::testing
