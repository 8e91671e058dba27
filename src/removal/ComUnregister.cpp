// ComUnregister.cpp: UnRegServer and RegSvr32, which run a component's registration entry
// in this process and give it ten seconds.
#include "removal/ComUnregister.h"

#include <cstdint>

#include "core/ErrorHandler.h"
#include "platform/Failure.h"
#include "platform/FileHelper.h"
#include "platform/Platform.h"

namespace orvex {
namespace {

const std::string kModule = "Module1";
constexpr std::uint32_t kEntryTimeoutMs = 10000;

// What the run time's directory lookup of a plain path finds: a file that is neither a
// folder nor hidden nor a system file. Spyware that hides its file is not asked.
bool DirFindsFile(const std::string& path) {
    constexpr std::uint32_t kNotListed =
        platform::attr::kHidden | platform::attr::kSystem | platform::attr::kDirectory;
    if (path.empty()) return false;
    try {
        return (platform::Files().attributes(path) & kNotListed) == 0;
    } catch (const Failure&) {
        return false;
    }
}

bool RunRegistrationEntry(const std::string& path, const std::string& entryName) {
    if (!DirFindsFile(path)) return false;
    platform::ProcessApi& process = platform::Processes();
    const platform::LibraryHandle library = process.loadLibrary(path);
    if (library == 0) return false;
    const platform::EntryAddress entry = process.entryAddress(library, entryName);
    if (entry == 0) {
        process.freeLibrary(library);
        return false;
    }
    const platform::ThreadHandle thread = process.startEntryThread(entry);
    // The library stays loaded: nothing knows whether the entry ran.
    if (thread == 0) return false;
    if (process.waitForThread(thread, kEntryTimeoutMs) == platform::kThreadEnded) {
        process.closeThread(thread);
        process.freeLibrary(library);
        return true;
    }
    // The component hangs. Ending a thread here ends this one, the program's only user
    // interface thread, not the hung one; nothing after this line runs.
    process.exitThread(process.threadExitCode(thread));
    return false;  // not reached
}

}  // namespace

bool UnRegServer(const std::string& path) {
    bool result = false;
    Procedure proc(kModule, "UnRegServer");
    proc.Run([&] {
        if (platform::FileHelper().FileExists(path)) result = RegSvr32(path, true);
    });
    return result;
}

bool RegSvr32(const std::string& path, bool unregister) {
    bool result = false;
    Procedure proc(kModule, "RegSvr32");
    proc.Run([&] {
        result =
            RunRegistrationEntry(path, unregister ? "DllUnregisterServer" : "DllRegisterServer");
    });
    return result;
}

}  // namespace orvex
