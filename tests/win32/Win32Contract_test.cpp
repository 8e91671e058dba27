// Win32Contract_test.cpp: the Win32 back-end under Wine, the reference the contract suites
// are written from.
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>

#include "platform/contract/FilesContract.h"
#include "platform/contract/ProcessesContract.h"
#include "platform/contract/RegistryContract.h"
#include "platform/contract/SystemContract.h"
#include "platform/win32/Win32Files.h"
#include "platform/win32/Win32Processes.h"
#include "platform/win32/Win32Registry.h"
#include "platform/win32/Win32System.h"
#include "win32/SleepingChild.h"

namespace orvex::testing {
namespace {

using namespace platform;
using namespace platform::win32;

void RemoveAll(const std::string& path) {
    std::error_code ignored;
    for (const auto& e : std::filesystem::recursive_directory_iterator(path, ignored))
        SetFileAttributesA(e.path().string().c_str(), FILE_ATTRIBUTE_NORMAL);
    std::filesystem::remove_all(path, ignored);
}

struct Win32FilesMaker {
    static constexpr Difference kDifferences[] = {
        {"MissingDrivesAndFoldersOnTheWayAreMissingPaths",
         "Wine answers 53 or 52 where Windows answers 76"},
        {"ReadOnlyFilesRefuseToBeWrittenOrReplaced",
         "Wine run by root writes and replaces read-only files"},
    };
    Win32FilesMaker() {
        RemoveAll(dir);
        CreateDirectoryA(dir.c_str(), nullptr);
    }
    ~Win32FilesMaker() {
        if (held != INVALID_HANDLE_VALUE) CloseHandle(held);
        RemoveAll(dir);
    }
    FileSystem& files() { return fs; }
    std::string folder() const { return dir; }
    // Another program's handle, shared with nobody.
    void lock(const std::string& path, bool on) {
        if (held != INVALID_HANDLE_VALUE) CloseHandle(held);
        held = on ? CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)
                  : INVALID_HANDLE_VALUE;
        ASSERT_EQ(held == INVALID_HANDLE_VALUE, !on);
    }

    Win32Files fs;
    std::string dir = (std::filesystem::temp_directory_path() /
                       ("OrvexContract" + std::to_string(GetCurrentProcessId())))
                          .string();
    HANDLE held = INVALID_HANDLE_VALUE;
};

struct Win32RegistryMaker {
    Win32RegistryMaker() {
        reg.deleteTree(Hive::CurrentUser, root());
        reg.createKey(Hive::CurrentUser, root());
    }
    ~Win32RegistryMaker() { reg.deleteTree(Hive::CurrentUser, root()); }
    RegistryBackend& registry() { return reg; }
    std::string root() const { return "Software\\OrvexSentryTest"; }

    Win32Registry reg;
};

struct Win32ProcessesMaker {
    ProcessApi& processes() { return procs; }
    std::string selfImage() const { return ThisExecutable(); }
    ChildProgram child() const { return {ThisExecutable(), kSleepArgument, ThisExecutable()}; }
    // Ended by terminate, not by the end of its sleep.
    bool ended(std::uint32_t pid) {
        HANDLE watch = OpenProcess(SYNCHRONIZE | PROCESS_QUERY_INFORMATION, FALSE, pid);
        if (watch == nullptr) return true;
        DWORD exitCode = kChildUnendedExitCode;
        const bool gone = WaitForSingleObject(watch, 10000) == WAIT_OBJECT_0 &&
                          GetExitCodeProcess(watch, &exitCode) && exitCode == 0;
        CloseHandle(watch);
        return gone;
    }

    Win32Processes procs;
};

struct Win32SystemMaker : Win32FilesMaker {
    System& system() { return sys; }
    void pause(int ms) { Sleep(ms); }
    std::string mutexName(const std::string& stem) const {
        return stem + "_" + std::to_string(GetCurrentProcessId());
    }
    std::string executable() const { return ThisExecutable(); }
    bool usLocale() const {
        return GetUserDefaultLCID() == MAKELCID(MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US), 0);
    }

    Win32System sys;
};

INSTANTIATE_TYPED_TEST_SUITE_P(Win32, FilesContract, Win32FilesMaker);
INSTANTIATE_TYPED_TEST_SUITE_P(Win32, RegistryContract, Win32RegistryMaker);
INSTANTIATE_TYPED_TEST_SUITE_P(Win32, ProcessesContract, Win32ProcessesMaker);
INSTANTIATE_TYPED_TEST_SUITE_P(Win32, SystemContract, Win32SystemMaker);

}  // namespace
}  // namespace orvex::testing
