// Processes.h: the process primitives of the memory scan and of start-up.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvex::platform {

// What GetVersionEx reports.
struct OsVersion {
    std::uint32_t platformId = 0;  // 1 for the 9x family, 2 for the NT family
    std::uint32_t major = 0;
    std::uint32_t minor = 0;
};

struct ProcessEntry {
    std::uint32_t pid = 0;
    std::string imagePath;  // full path of the main module, empty when it cannot be read
};

// A library loaded into this process, an exported entry of one, a thread: 0 is none.
using LibraryHandle = std::uintptr_t;
using EntryAddress = std::uintptr_t;
using ThreadHandle = std::uintptr_t;

// What waitForThread gives when the thread ended within the time (WAIT_OBJECT_0).
inline constexpr std::uint32_t kThreadEnded = 0;

class ProcessApi {
  public:
    virtual ~ProcessApi() = default;

    virtual std::optional<OsVersion> osVersion() = 0;
    // The PSAPI-style list: every process id with the path of its first module.
    virtual std::vector<ProcessEntry> listWithPaths() = 0;
    // The Toolhelp-style list: the image name of every process, in snapshot order.
    virtual std::vector<std::string> listImageNames() = 0;
    virtual bool terminate(std::uint32_t pid) = 0;
    virtual std::uint32_t currentProcessId() = 0;
    // Starts a program without waiting for it; `hidden` asks for no visible window.
    virtual bool start(std::string_view path, std::string_view arguments, bool hidden) = 0;

    // Running a library's exported entry on a thread of its own, one call each, so that the
    // caller decides what follows each outcome. LoadLibrary: 0 when the file can't be loaded.
    virtual LibraryHandle loadLibrary(std::string_view path) = 0;
    // GetProcAddress: 0 when the library exports no such name.
    virtual EntryAddress entryAddress(LibraryHandle library, std::string_view name) = 0;
    virtual void freeLibrary(LibraryHandle library) = 0;
    // CreateThread with the entry itself as the thread's routine and a null parameter.
    virtual ThreadHandle startEntryThread(EntryAddress entry) = 0;
    // WaitForSingleObject: kThreadEnded, or another value when the time ran out or the
    // wait failed.
    virtual std::uint32_t waitForThread(ThreadHandle thread, std::uint32_t milliseconds) = 0;
    virtual std::uint32_t threadExitCode(ThreadHandle thread) = 0;
    virtual void closeThread(ThreadHandle thread) = 0;
    // ExitThread: ends the calling thread, never returns to the caller.
    [[noreturn]] virtual void exitThread(std::uint32_t code) = 0;
};

}  // namespace orvex::platform
